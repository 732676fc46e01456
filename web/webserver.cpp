#include "webserver.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/strand.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>

#include "httpsession.h"
#include "tlscontext.h"

namespace asio = boost::asio;
namespace beast = boost::beast;
using tcp = asio::ip::tcp;

// One listening address: accepts connections and starts a session for each,
// after the TLS handshake when there is TLS.
struct WebServer::Listener final : std::enable_shared_from_this<Listener>
{
    Listener(asio::io_context& io, WebServer::Shared& shared, asio::ssl::context* tls)
        : io(io)
        , acceptor(asio::make_strand(io))
        , shared(shared)
        , tls(tls)
    {
    }

    void accept()
    {
        acceptor.async_accept(
            asio::make_strand(io), [self = shared_from_this()](beast::error_code error, tcp::socket socket) {
                if (error == asio::error::operation_aborted)
                    return;
                if (!error)
                    self->start(std::move(socket));
                self->accept();
            });
    }

    void start(tcp::socket socket)
    {
        if (!tls) {
            std::make_shared<HttpSession<beast::tcp_stream>>(
                beast::tcp_stream(std::move(socket)), shared, false)
                ->start();
            return;
        }
        auto stream = std::make_shared<beast::ssl_stream<beast::tcp_stream>>(std::move(socket), *tls);
        beast::get_lowest_layer(*stream).expires_after(std::chrono::seconds(30));
        stream->async_handshake(asio::ssl::stream_base::server,
            [this, self = shared_from_this(), stream](beast::error_code error) {
                if (error)
                    return; // the stream and its socket go with the last reference
                beast::get_lowest_layer(*stream).expires_never();
                std::make_shared<HttpSession<beast::ssl_stream<beast::tcp_stream>>>(
                    std::move(*stream), shared, true)
                    ->start();
            });
    }

    asio::io_context& io;
    tcp::acceptor acceptor;
    WebServer::Shared& shared;
    asio::ssl::context* tls;
};

WebServer::WebServer(WebApi& api, StreamHub& hub, Settings settings)
    : m_io(std::make_unique<asio::io_context>(settings.threads))
    , m_shared {api, hub, settings.web.headers, settings.maxRequests}
    , m_settings(std::move(settings))
{
}

WebServer::~WebServer() = default;

bool WebServer::setUp(std::string& error)
{
    if (!m_settings.web.tls)
        return true;
    m_tls = std::make_unique<asio::ssl::context>(asio::ssl::context::tls_server);
    return setUpTlsContext(*m_tls->native_handle(), m_settings.web, m_settings.webConfigFile, error);
}

bool WebServer::bind(const std::string& host, int port, std::string& error)
{
    beast::error_code code;
    const std::string where
        = (host.find(':') != std::string::npos ? "[" + host + "]" : host) + ":" + std::to_string(port);
    tcp::endpoint endpoint(tcp::v6(), static_cast<unsigned short>(port));
    if (!host.empty()) {
        tcp::resolver resolver(*m_io);
        const auto found = resolver.resolve(host, std::to_string(port), tcp::resolver::passive, code);
        if (code || found.empty()) {
            error = "cannot listen on " + where + ": " + (code ? code.message() : "no address");
            return false;
        }
        endpoint = found.begin()->endpoint();
    }
    auto listener = std::make_shared<Listener>(*m_io, m_shared, m_tls.get());
    tcp::acceptor& acceptor = listener->acceptor;
    acceptor.open(endpoint.protocol(), code);
    if (!code && host.empty())
        acceptor.set_option(asio::ip::v6_only(false), code); // every IPv4 address too
    if (!code)
        acceptor.set_option(asio::socket_base::reuse_address(true), code);
    if (!code)
        acceptor.bind(endpoint, code);
    if (!code)
        acceptor.listen(asio::socket_base::max_listen_connections, code);
    if (code) {
        error = "cannot listen on " + where + ": " + code.message();
        return false;
    }
    m_ports.push_back(acceptor.local_endpoint().port());
    m_listeners.push_back(std::move(listener));
    return true;
}

int WebServer::port(std::size_t address) const
{
    return address < m_ports.size() ? m_ports[address] : 0;
}

void WebServer::run()
{
    for (const std::shared_ptr<Listener>& listener : m_listeners)
        listener->accept();
    std::vector<std::thread> threads;
    for (int i = 1; i < m_settings.threads; ++i)
        threads.emplace_back([this] { m_io->run(); });
    m_io->run();
    for (std::thread& thread : threads)
        thread.join();
}

void WebServer::stop()
{
    m_io->stop();
}
