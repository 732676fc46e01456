#include "beastlistener.h"

#include <boost/asio/strand.hpp>
#include <memory>

#include "beastsession.h"

namespace asio = boost::asio;

BeastListener::BeastListener(asio::io_context& context, int port, BeastHub& hub, std::size_t queueLimit)
    : m_context(context)
    , m_acceptor(context)
    , m_hub(hub)
    , m_queueLimit(queueLimit)
{
    const asio::ip::tcp::endpoint endpoint(
        asio::ip::make_address("127.0.0.1"), static_cast<unsigned short>(port));
    m_acceptor.open(endpoint.protocol());
    m_acceptor.set_option(asio::socket_base::reuse_address(true));
    m_acceptor.bind(endpoint);
    m_acceptor.listen(asio::socket_base::max_listen_connections);
}

void BeastListener::accept()
{
    m_acceptor.async_accept(
        asio::make_strand(m_context), [this](boost::system::error_code error, asio::ip::tcp::socket socket) {
            if (!error)
                std::make_shared<BeastSession>(std::move(socket), m_hub, m_queueLimit)->start();
            accept();
        });
}
