#include "metricsserver.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <httplib.h>
#include <optional>
#include <strings.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>

#include "basicauth.h"
#include "exporter.h"
#include "tlscontext.h"

namespace {

std::string escapeHtml(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

// Whether Accept-Encoding names gzip without refusing it by q=0.
bool acceptsGzip(const httplib::Request& request)
{
    const std::string header = request.get_header_value("Accept-Encoding");
    std::size_t start = 0;
    while (start <= header.size()) {
        std::size_t end = header.find(',', start);
        if (end == std::string::npos)
            end = header.size();
        std::string item = header.substr(start, end - start);
        item.erase(std::remove(item.begin(), item.end(), ' '), item.end());
        const std::size_t semicolon = item.find(';');
        const std::string coding = item.substr(0, semicolon);
        if (strcasecmp(coding.c_str(), "gzip") == 0 || coding == "*") {
            const std::string quality = semicolon == std::string::npos ? "" : item.substr(semicolon + 1);
            return quality.rfind("q=", 0) != 0 || std::strtod(quality.c_str() + 2, nullptr) > 0.0;
        }
        start = end + 1;
    }
    return false;
}

// X-Prometheus-Scrape-Timeout-Seconds: how long the scraper waits ("4.5").
std::optional<std::chrono::milliseconds> scrapeTimeout(const httplib::Request& request)
{
    const std::string header = request.get_header_value("X-Prometheus-Scrape-Timeout-Seconds");
    if (header.empty())
        return std::nullopt;
    char* end = nullptr;
    const double seconds = std::strtod(header.c_str(), &end);
    if (*end != '\0' || !(seconds > 0.0 && seconds < 86400.0))
        return std::nullopt;
    return std::chrono::milliseconds(static_cast<long long>(seconds * 1000.0));
}

// Counts a scrape in for as long as it is served.
class ScrapeSlot final
{
public:
    ScrapeSlot(std::atomic<int>& scrapes, int limit)
        : m_scrapes(scrapes)
        , m_taken(++m_scrapes <= limit)
    {
    }
    ~ScrapeSlot() { --m_scrapes; }
    ScrapeSlot(const ScrapeSlot&) = delete;
    ScrapeSlot& operator=(const ScrapeSlot&) = delete;

    bool taken() const { return m_taken; }

private:
    std::atomic<int>& m_scrapes;
    const bool m_taken;
};

} // namespace

MetricsServer::MetricsServer(Exporter& exporter, std::string serverAddress, Settings settings)
    : m_exporter(exporter)
    , m_serverAddress(std::move(serverAddress))
    , m_settings(std::move(settings))
    , m_auth(std::make_unique<BasicAuth>(m_settings.web.users, "korvane-exporter"))
{
}

MetricsServer::MetricsServer(Exporter& exporter, std::string serverAddress)
    : MetricsServer(exporter, std::move(serverAddress), Settings())
{
}

MetricsServer::~MetricsServer() = default;

std::unique_ptr<httplib::Server> MetricsServer::makeServer(std::string& error)
{
    std::unique_ptr<httplib::Server> server;
    if (m_settings.web.tls) {
        std::string setupError;
        auto tls = std::make_unique<httplib::SSLServer>([this, &setupError](SSL_CTX& context) {
            return setUpTlsContext(context, m_settings.web, m_settings.webConfigFile, setupError);
        });
        if (!tls->is_valid()) {
            error = setupError.empty() ? "cannot set up TLS" : setupError;
            return nullptr;
        }
        server = std::move(tls);
    } else {
        server = std::make_unique<httplib::Server>();
    }
    // The library's default adds SO_REUSEPORT, which lets a second exporter
    // share the port unnoticed; SO_REUSEADDR alone still allows a quick restart.
    server->set_socket_options([](int socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    // Room for every scrape allowed, and more, so that the index page and the
    // 503 answers are never queued behind scrapes (a kept-alive connection
    // holds its thread while it waits for the next request).
    const std::size_t threads = static_cast<std::size_t>(m_settings.maxRequests) + 8;
    server->new_task_queue = [threads] { return new httplib::ThreadPool(threads); };
    route(*server);
    return server;
}

bool MetricsServer::bind(const std::string& host, int port, std::string& error)
{
    std::unique_ptr<httplib::Server> server = makeServer(error);
    if (!server)
        return false;
    // The library reads an empty host as no address at all.
    const std::string address = host.empty() ? "::" : host;
    errno = 0;
    int bound
        = port == 0 ? server->bind_to_any_port(address) : (server->bind_to_port(address, port) ? port : -1);
    if (bound <= 0 && host.empty()) {
        // A host without IPv6: every IPv4 address.
        errno = 0;
        bound = port == 0 ? server->bind_to_any_port("0.0.0.0")
                          : (server->bind_to_port("0.0.0.0", port) ? port : -1);
    }
    if (bound <= 0) {
        const bool bracketed = host.find(':') != std::string::npos;
        error = "cannot listen on " + (bracketed ? "[" + host + "]" : host) + ":" + std::to_string(port)
            + (errno != 0 ? ": " + std::error_code(errno, std::generic_category()).message() : std::string());
        return false;
    }
    m_servers.push_back(std::move(server));
    m_ports.push_back(bound);
    return true;
}

int MetricsServer::port(std::size_t address) const
{
    return address < m_ports.size() ? m_ports[address] : 0;
}

bool MetricsServer::run()
{
    if (m_servers.empty())
        return false;
    std::vector<std::thread> others;
    // One flag per address, so that no two threads share a vector<bool> word.
    std::vector<unsigned char> results(m_servers.size(), 0);
    for (std::size_t i = 1; i < m_servers.size(); ++i)
        others.emplace_back([this, i, &results] { results[i] = m_servers[i]->listen_after_bind() ? 1 : 0; });
    results[0] = m_servers[0]->listen_after_bind() ? 1 : 0;
    // One address that stops serving stops them all.
    stop();
    for (std::thread& other : others)
        other.join();
    return std::all_of(results.begin(), results.end(), [](unsigned char ok) { return ok != 0; });
}

void MetricsServer::stop()
{
    for (const std::unique_ptr<httplib::Server>& server : m_servers)
        server->stop();
}

void MetricsServer::route(httplib::Server& server)
{
    server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        for (const auto& header : m_settings.web.headers)
            response.set_header(header.first, header.second);
        if (m_auth->allows(request.get_header_value("Authorization")))
            return httplib::Server::HandlerResponse::Unhandled;
        response.status = 401;
        response.set_header("WWW-Authenticate", m_auth->challenge());
        response.set_content("Unauthorized\n", "text/plain; charset=utf-8");
        return httplib::Server::HandlerResponse::Handled;
    });

    server.Get(
        m_settings.telemetryPath, [this](const httplib::Request& request, httplib::Response& response) {
            ScrapeSlot slot(m_scrapes, m_settings.maxRequests);
            if (!slot.taken()) {
                response.status = 503;
                response.set_content("Too many scrapes at the same time; the limit is "
                        + std::to_string(m_settings.maxRequests) + " (--web.max-requests).\n",
                    "text/plain; charset=utf-8");
                return;
            }
            std::shared_ptr<const MetricsPage> page = m_exporter.page(scrapeTimeout(request));
            if (!page) {
                response.status = 503;
                response.set_content("The exporter is stopping.\n", "text/plain; charset=utf-8");
                return;
            }
            // A body of known length goes out as it is: the library compresses
            // only bodies it owns, and this one is compressed once per reading.
            const bool gzip = acceptsGzip(request);
            const std::string& body = gzip ? page->gzipped() : page->text();
            if (gzip)
                response.set_header("Content-Encoding", "gzip");
            response.set_header("Vary", "Accept-Encoding");
            response.set_content_provider(body.size(), ContentType,
                [page, &body](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                    return sink.write(body.data() + offset, length);
                });
        });

    server.Get("/", [this](const httplib::Request&, httplib::Response& response) {
        response.set_content("<!DOCTYPE html>\n<html><head><title>Korvane Exporter</title></head><body>\n"
                             "<h1>Korvane Exporter</h1>\n<p>Watching the processing server at "
                + escapeHtml(m_serverAddress) + ".</p>\n<p><a href=\"" + escapeHtml(m_settings.telemetryPath)
                + "\">Metrics</a></p>\n</body></html>\n",
            "text/html; charset=utf-8");
    });

    server.set_error_handler([this](const httplib::Request&, httplib::Response& response) {
        if (response.status == 404)
            response.set_content("404 page not found; the metrics are at " + m_settings.telemetryPath + "\n",
                "text/plain; charset=utf-8");
    });
}
