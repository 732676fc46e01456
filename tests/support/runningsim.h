#pragma once

#include <cstdint>
#include <string>
#include <thread>

#include "farm.h"
#include "simserver.h"

// The simulator in this process, serving on 127.0.0.1 from a thread of its
// own for the life of the object: on a free port, or on the one given so
// that a test can take the server away and bring it back there. The farm's
// clock stands still unless the server config says otherwise, so replies
// depend only on the requests.
class RunningSim final
{
public:
    explicit RunningSim(
        const FarmConfig& farm = FarmConfig(), const ServerConfig& server = frozen(), std::uint16_t port = 0);
    ~RunningSim();
    RunningSim(const RunningSim&) = delete;
    RunningSim& operator=(const RunningSim&) = delete;

    static ServerConfig frozen();
    static ServerConfig withFaults(const FaultSwitches& faults);

    bool listening() const { return m_listening; }
    std::uint16_t port() const { return m_server.port(); }
    std::string address() const { return "127.0.0.1:" + std::to_string(port()); }

private:
    Farm m_farm;
    SimServer m_server;
    bool m_listening = false;
    std::thread m_thread;
};
