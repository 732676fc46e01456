#include "runningsim.h"

RunningSim::RunningSim(const FarmConfig& farm, const ServerConfig& server, std::uint16_t port)
    : m_farm(farm)
    , m_server(m_farm, server)
{
    std::string error;
    m_listening = m_server.listen("127.0.0.1", port, error);
    if (m_listening)
        m_thread = std::thread([this] { m_server.run(); });
}

RunningSim::~RunningSim()
{
    m_server.stop();
    if (m_thread.joinable())
        m_thread.join();
}

ServerConfig RunningSim::frozen()
{
    ServerConfig config;
    config.tickMs = 0;
    return config;
}

ServerConfig RunningSim::withFaults(const FaultSwitches& faults)
{
    ServerConfig config = frozen();
    config.faults = faults;
    return config;
}
