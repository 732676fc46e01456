#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "webconfig.h"

class StreamHub;
class WebApi;

namespace boost::asio {
class io_context;
namespace ssl {
class context;
}
} // namespace boost::asio

// The HTTP side, event-driven on Boost.Beast: a few threads serve every
// connection, so that hundreds of open event streams cost memory, not
// threads. With TLS in the web configuration every address speaks HTTPS.
// Requests beyond maxRequests at a time (streams aside) get 503.
class WebServer final
{
public:
    struct Settings
    {
        int threads = 2;
        int maxRequests = 40;
        WebConfig web;
        // The web configuration file, for messages about its keys.
        std::string webConfigFile;
    };

    WebServer(WebApi& api, StreamHub& hub, Settings settings);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    // Sets up TLS from the web configuration; false with the reason.
    bool setUp(std::string& error);
    // One more address; port 0 takes a free port, an empty host is every
    // address. False with the reason.
    bool bind(const std::string& host, int port, std::string& error);
    int port(std::size_t address = 0) const;
    // Serves until stop(); returns when every thread has ended.
    void run();
    // May be called from any thread, also before run().
    void stop();

    // What every session uses.
    struct Shared
    {
        WebApi& api;
        StreamHub& hub;
        // http_server_config.headers of the web configuration.
        std::map<std::string, std::string> headers;
        const int maxRequests;
        std::atomic<int> inFlight {0};
    };

private:
    std::unique_ptr<boost::asio::io_context> m_io;
    std::unique_ptr<boost::asio::ssl::context> m_tls;
    Shared m_shared;
    const Settings m_settings;
    struct Listener;
    std::vector<std::shared_ptr<Listener>> m_listeners;
    std::vector<int> m_ports;
};
