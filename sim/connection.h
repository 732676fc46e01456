#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <string>

#include "faultswitches.h"

// One client of the simulator: its non-blocking socket, the bytes of an
// unfinished request line, and the replies waiting to go out, each with the
// moment it may be sent (the delay switch). The other fault switches are
// applied here too, so that each connection counts its own requests and
// replies.
class Connection final
{
public:
    using Clock = std::chrono::steady_clock;

    // Longest request line accepted; a longer one ends the connection.
    static constexpr std::size_t MaxLineBytes = 16 * 1024 * 1024;

    Connection(int socket, const FaultSwitches& faults);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int socket() const { return m_socket; }

    // Reads everything available. False when the peer closed or failed, or
    // sent a line too long to keep.
    bool readAvailable();
    // The next complete line, without its line feed; false when there is none.
    bool takeLine(std::string& line);
    // Counts a request and says whether it is to be answered (the mute switch).
    bool answerRequest();
    // Stops taking requests once the close switch has been reached.
    bool closing() const { return m_closing; }

    void queueReply(std::string reply, Clock::time_point now);

    bool hasDueOutput(Clock::time_point now) const;
    // When the first held-back reply falls due; false when nothing waits.
    bool nextDue(Clock::time_point& due) const;
    // Sends what may be sent now. False when the socket failed.
    bool writeDue(Clock::time_point now);
    // True once the close switch's last reply is out: the server closes it.
    bool done() const;

private:
    struct Outgoing
    {
        std::string bytes;
        std::size_t sent = 0;
        Clock::time_point due;
        bool reply = false;
    };

    int m_socket;
    const FaultSwitches& m_faults;
    std::string m_input;
    std::size_t m_scanned = 0;
    std::deque<Outgoing> m_output;
    unsigned long long m_requests = 0;
    unsigned long long m_repliesQueued = 0;
    unsigned long long m_repliesSent = 0;
    bool m_closing = false;
};
