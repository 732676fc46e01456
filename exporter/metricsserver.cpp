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

#include "exporter.h"

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

} // namespace

MetricsServer::MetricsServer(Exporter& exporter, std::string serverAddress)
    : m_exporter(exporter)
    , m_serverAddress(std::move(serverAddress))
    , m_server(std::make_unique<httplib::Server>())
{
    // The library's default adds SO_REUSEPORT, which lets a second exporter
    // share the port unnoticed; SO_REUSEADDR alone still allows a quick restart.
    m_server->set_socket_options([](int socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    route();
}

MetricsServer::~MetricsServer() = default;

bool MetricsServer::bind(const std::string& host, int port, std::string& error)
{
    errno = 0;
    m_port = port == 0 ? m_server->bind_to_any_port(host) : (m_server->bind_to_port(host, port) ? port : -1);
    if (m_port <= 0) {
        error = "cannot listen on " + host + ":" + std::to_string(port)
            + (errno != 0 ? ": " + std::error_code(errno, std::generic_category()).message() : std::string());
        return false;
    }
    return true;
}

bool MetricsServer::run()
{
    return m_server->listen_after_bind();
}

void MetricsServer::stop()
{
    m_server->stop();
}

void MetricsServer::route()
{
    m_server->Get("/metrics", [this](const httplib::Request& request, httplib::Response& response) {
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

    m_server->Get("/", [this](const httplib::Request&, httplib::Response& response) {
        response.set_content("<!DOCTYPE html>\n<html><head><title>Korvane Exporter</title></head><body>\n"
                             "<h1>Korvane Exporter</h1>\n<p>Watching the processing server at "
                + escapeHtml(m_serverAddress)
                + ".</p>\n<p><a href=\"/metrics\">Metrics</a></p>\n</body></html>\n",
            "text/html; charset=utf-8");
    });

    m_server->set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.status == 404)
            response.set_content(
                "404 page not found; the metrics are at /metrics\n", "text/plain; charset=utf-8");
    });
}
