#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

class BeastHub;

// Accepts connections on loopback, each onto a strand of its own.
class BeastListener final
{
public:
    BeastListener(boost::asio::io_context& context, int port, BeastHub& hub, std::size_t queueLimit);
    BeastListener(const BeastListener&) = delete;
    BeastListener& operator=(const BeastListener&) = delete;

    void accept();

private:
    boost::asio::io_context& m_context;
    boost::asio::ip::tcp::acceptor m_acceptor;
    BeastHub& m_hub;
    const std::size_t m_queueLimit;
};
