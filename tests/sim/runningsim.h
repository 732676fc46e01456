#pragma once

#include <arpa/inet.h>
#include <chrono>
#include <cstdint>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "farm.h"
#include "simserver.h"

// A simulator serving on 127.0.0.1 (free port) from its own thread for the
// life of the object. The farm's clock stands still unless the server config
// says otherwise, so replies depend only on the requests.
class RunningSim final
{
public:
    explicit RunningSim(const FarmConfig& farm = FarmConfig(), const ServerConfig& server = frozen())
        : m_farm(farm)
        , m_server(m_farm, server)
    {
        std::string error;
        m_listening = m_server.listen("127.0.0.1", 0, error);
        if (m_listening)
            m_thread = std::thread([this] { m_server.run(); });
    }
    ~RunningSim()
    {
        m_server.stop();
        if (m_thread.joinable())
            m_thread.join();
    }
    RunningSim(const RunningSim&) = delete;
    RunningSim& operator=(const RunningSim&) = delete;

    static ServerConfig frozen()
    {
        ServerConfig config;
        config.tickMs = 0;
        return config;
    }
    static ServerConfig withFaults(const FaultSwitches& faults)
    {
        ServerConfig config = frozen();
        config.faults = faults;
        return config;
    }

    bool listening() const { return m_listening; }
    std::uint16_t port() const { return m_server.port(); }

private:
    Farm m_farm;
    SimServer m_server;
    bool m_listening = false;
    std::thread m_thread;
};

// A bare TCP client speaking lines, for what the protocol client cannot do
// (garbage, half lines, watching the connection itself).
class LineClient final
{
public:
    explicit LineClient(std::uint16_t port)
    {
        m_socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            ::close(m_socket);
            m_socket = -1;
        }
    }
    ~LineClient() { close(); }
    LineClient(const LineClient&) = delete;
    LineClient& operator=(const LineClient&) = delete;

    bool connected() const { return m_socket != -1; }
    void close()
    {
        if (m_socket != -1)
            ::close(m_socket);
        m_socket = -1;
    }

    bool write(const std::string& bytes)
    {
        return ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL)
            == static_cast<ssize_t>(bytes.size());
    }

    // The next line with its line feed; empty on time-out or end of stream.
    std::string readLine(int timeoutMs = 10000)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        for (;;) {
            const std::size_t feed = m_buffer.find('\n');
            if (feed != std::string::npos) {
                std::string line = m_buffer.substr(0, feed + 1);
                m_buffer.erase(0, feed + 1);
                return line;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now())
                                  .count();
            if (left <= 0 || !readSome(static_cast<int>(left)))
                return {};
        }
    }

    // True when the server closed its end within the time.
    bool closedByPeer(int timeoutMs = 10000)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        while (std::chrono::steady_clock::now() < end) {
            pollfd descriptor {m_socket, POLLIN, 0};
            if (::poll(&descriptor, 1, 50) > 0) {
                char block[4096];
                const ssize_t received = ::recv(m_socket, block, sizeof block, 0);
                if (received <= 0)
                    return true;
                m_buffer.append(block, static_cast<std::size_t>(received));
            }
        }
        return false;
    }

    std::string pending() const { return m_buffer; }

private:
    bool readSome(int timeoutMs)
    {
        pollfd descriptor {m_socket, POLLIN, 0};
        if (::poll(&descriptor, 1, timeoutMs) < 1)
            return false;
        char block[65536];
        const ssize_t received = ::recv(m_socket, block, sizeof block, 0);
        if (received <= 0)
            return false;
        m_buffer.append(block, static_cast<std::size_t>(received));
        return true;
    }

    int m_socket = -1;
    std::string m_buffer;
};
