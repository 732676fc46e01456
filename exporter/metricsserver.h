#pragma once

#include <memory>
#include <string>

class Exporter;

namespace httplib {
class Server;
}

// The HTTP side: GET /metrics serves the exporter's page in the text
// exposition format (gzip when the scraper accepts it), / a short HTML index,
// anything else 404. Requests run on the HTTP library's thread pool.
class MetricsServer final
{
public:
    // serverAddress: the watched server, named on the index page.
    MetricsServer(Exporter& exporter, std::string serverAddress);
    ~MetricsServer();
    MetricsServer(const MetricsServer&) = delete;
    MetricsServer& operator=(const MetricsServer&) = delete;

    // Port 0 takes a free port. On failure returns false with the reason.
    bool bind(const std::string& host, int port, std::string& error);
    int port() const { return m_port; }
    // Serves until stop(); false if serving could not go on.
    bool run();
    // May be called from any thread, also before run().
    void stop();

    static constexpr const char* ContentType = "text/plain; version=0.0.4; charset=utf-8";

private:
    void route();

    Exporter& m_exporter;
    const std::string m_serverAddress;
    std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
};
