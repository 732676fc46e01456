#pragma once

#include <arpa/inet.h>
#include <cstdint>
#include <netinet/in.h>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "farm.h"
#include "simserver.h"

// A port on 127.0.0.1 that was free a moment ago (bound, read, released).
inline std::uint16_t freeLoopbackPort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0
        || ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        ::close(fd);
        return 0;
    }
    ::close(fd);
    return ntohs(address.sin_port);
}

// The simulator in-process on a port of the test's choosing (0: a free one),
// so that a test can take the server away and bring it back on the same port.
class SimOnPort final
{
public:
    explicit SimOnPort(std::uint16_t port = 0, const FarmConfig& farm = FarmConfig(), int tickMs = 0,
        const FaultSwitches& faults = FaultSwitches())
        : m_farm(farm)
        , m_server(m_farm, config(tickMs, faults))
    {
        std::string error;
        m_listening = m_server.listen("127.0.0.1", port, error);
        if (m_listening)
            m_thread = std::thread([this] { m_server.run(); });
    }
    ~SimOnPort()
    {
        m_server.stop();
        if (m_thread.joinable())
            m_thread.join();
    }
    SimOnPort(const SimOnPort&) = delete;
    SimOnPort& operator=(const SimOnPort&) = delete;

    bool listening() const { return m_listening; }
    std::uint16_t port() const { return m_server.port(); }
    std::string address() const { return "127.0.0.1:" + std::to_string(port()); }

private:
    static ServerConfig config(int tickMs, const FaultSwitches& faults)
    {
        ServerConfig config;
        config.tickMs = tickMs;
        config.faults = faults;
        return config;
    }

    Farm m_farm;
    SimServer m_server;
    bool m_listening = false;
    std::thread m_thread;
};

// The lines written to a log stream so far, each with its line feed.
inline std::string taken(std::ostringstream& log)
{
    std::string text = log.str();
    log.str({});
    return text;
}
