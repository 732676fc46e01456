#pragma once

#include <cstdint>
#include <string>

// A port on 127.0.0.1 that was free a moment ago (bound, read, released); 0
// when none could be had.
std::uint16_t freeLoopbackPort();

// A bare TCP client on 127.0.0.1 speaking lines, for what the protocol
// client cannot do (garbage, half lines, watching the connection itself).
class LineClient final
{
public:
    explicit LineClient(std::uint16_t port);
    ~LineClient();
    LineClient(const LineClient&) = delete;
    LineClient& operator=(const LineClient&) = delete;

    bool connected() const { return m_socket != -1; }
    void close();

    bool write(const std::string& bytes);

    // The next line with its line feed; empty on time-out or end of stream.
    std::string readLine(int timeoutMs = 10000);

    // True when the server closed its end within the time.
    bool closedByPeer(int timeoutMs = 10000);

    const std::string& pending() const { return m_buffer; }

private:
    bool readSome(int timeoutMs);

    int m_socket = -1;
    std::string m_buffer;
};
