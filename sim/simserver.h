#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "connection.h"
#include "farm.h"
#include "faultswitches.h"
#include "rpchandler.h"

struct ServerConfig
{
    int tickMs = 100; // real time between ticks; 0 stops the farm's clock
    double speed = 1.0; // simulated seconds per real second
    // Longest request line kept; a longer one gets an error reply and ends
    // the connection.
    std::size_t maxLineBytes = std::size_t {1024} * 1024;
    // Clients served at once; the next one is told so in one line and closed.
    std::size_t maxClients = 64;
    FaultSwitches faults;
};

// The simulator's network side: one thread, one poll() loop over the
// listening socket, a wake-up pipe and every client connection. Requests are
// answered in arrival order per connection; a client that sends garbage,
// stalls, vanishes, floods or never reads affects only its own connection:
// each gets a share of every round, bounded input and bounded replies in
// waiting. Between requests the loop ticks the farm on the real clock.
class SimServer final
{
public:
    SimServer(Farm& farm, const ServerConfig& config);
    ~SimServer();
    SimServer(const SimServer&) = delete;
    SimServer& operator=(const SimServer&) = delete;

    // An IPv4 address in dotted form; port 0 takes a free one (see port()).
    bool listen(const std::string& address, std::uint16_t port, std::string& error);
    std::uint16_t port() const { return m_port; }
    // False when the address reaches beyond this machine (not 127.x.x.x).
    bool loopbackOnly() const { return m_loopbackOnly; }

    // Serves until stop().
    void run();
    // Safe from a signal handler and from any thread.
    void stop();

private:
    void acceptAll();
    // Tells a client beyond the limit so and closes it.
    void refuse(int socket);
    bool serve(Connection& connection, short events);
    void tickDue();

    Farm& m_farm;
    ServerConfig m_config;
    RpcHandler m_handler;
    int m_listener = -1;
    int m_wakeRead = -1;
    int m_wakeWrite = -1;
    std::uint16_t m_port = 0;
    bool m_loopbackOnly = true;
    std::atomic<bool> m_stop {false};
    std::vector<std::unique_ptr<Connection>> m_connections;
    Connection::Clock::time_point m_start;
    long long m_ticks = 0;
};
