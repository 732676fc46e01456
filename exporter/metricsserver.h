#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "exposition.h"
#include "webconfig.h"

class BasicAuth;
class Exporter;

namespace httplib {
class Server;
}

// The HTTP side: GET on the telemetry path serves the exporter's page in the
// text exposition format (gzip when the scraper accepts it), / a short HTML
// index that never waits on a reading, anything else 404. With TLS in the web
// configuration every address speaks HTTPS; with users in it every path asks
// for basic authentication. Scrapes beyond maxRequests at a time get 503.
// Each address has its own listening socket and thread pool.
class MetricsServer final
{
public:
    struct Settings
    {
        std::string telemetryPath = "/metrics";
        int maxRequests = 40;
        WebConfig web;
        // The web configuration file, for messages about its keys.
        std::string webConfigFile;
    };

    // serverAddress: the watched server, named on the index page.
    MetricsServer(Exporter& exporter, std::string serverAddress, Settings settings);
    MetricsServer(Exporter& exporter, std::string serverAddress);
    ~MetricsServer();
    MetricsServer(const MetricsServer&) = delete;
    MetricsServer& operator=(const MetricsServer&) = delete;

    // One more address; port 0 takes a free port. An empty host is every
    // address. On failure returns false with the reason.
    bool bind(const std::string& host, int port, std::string& error);
    // The port of the first address bound, or of the one given.
    int port(std::size_t address = 0) const;
    // Serves on every address until stop(); false if serving could not go on.
    bool run();
    // May be called from any thread, also before run().
    void stop();

    static constexpr const char* ContentType = ExpositionContentType;

private:
    std::unique_ptr<httplib::Server> makeServer(std::string& error);
    void route(httplib::Server& server);

    Exporter& m_exporter;
    const std::string m_serverAddress;
    const Settings m_settings;
    std::unique_ptr<BasicAuth> m_auth;
    std::vector<std::unique_ptr<httplib::Server>> m_servers;
    std::vector<int> m_ports;
    std::atomic<int> m_scrapes {0};
};
