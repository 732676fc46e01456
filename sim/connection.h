#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <string>

#include "faultswitches.h"

// One client of the simulator: its non-blocking socket, the bytes of
// requests not yet answered, and the replies waiting to go out, each with the
// moment it may be sent (the delay switch). The other fault switches are
// applied here too, so that each connection counts its own requests and
// replies.
//
// Peers are not trusted. Input is read a share at a time and only while the
// requests already read have been answered; a line longer than the limit is
// thrown away as it arrives; while more replies wait than a slow reader may
// hold back, nothing more is read. So memory per connection stays bounded
// whatever the peer sends.
class Connection final
{
public:
    using Clock = std::chrono::steady_clock;

    // Replies held back for one connection before it is read no further.
    static constexpr std::size_t MaxWaitingOutput = std::size_t {4} * 1024 * 1024;
    // How long a connection that has said its last line reads on, so that
    // its peer's unsent request bytes do not turn the close into a reset
    // that would destroy that line before it is read.
    static constexpr std::chrono::seconds DrainTime {10};

    Connection(int socket, const FaultSwitches& faults, std::size_t maxLineBytes);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int socket() const { return m_socket; }

    // Reads this round's share of what has come in. False when the peer
    // closed or failed.
    bool readAvailable();
    // The next complete line, without its line feed; false when there is
    // none, or when the next one is longer than the limit (lineTooLong()).
    bool takeLine(std::string& line);
    // A line longer than the limit came; every line before it has been taken.
    bool lineTooLong() const { return m_tooLong && !hasLine(); }
    // Whether a complete line waits to be taken.
    bool hasLine() const { return m_lineEnd > m_begin; }
    // Counts a request and says whether it is to be answered (the mute switch).
    bool answerRequest();
    // No more requests are taken: the close switch has been reached, or the
    // last line has been queued.
    bool closing() const { return m_closing; }
    // Whether to poll for input now.
    bool wantsInput() const;
    // More replies wait than one connection may hold back.
    bool outputFull() const { return m_waitingBytes >= MaxWaitingOutput; }

    void queueReply(std::string reply, Clock::time_point now);
    // The connection's last line: once it is out, the sending side is shut
    // and what the peer still sends is read and thrown away for a while.
    void queueLastLine(std::string line, Clock::time_point now);

    bool hasDueOutput(Clock::time_point now) const;
    // When the first held-back reply falls due; false when nothing waits.
    bool nextDue(Clock::time_point& due) const;
    // Sends what may be sent now. False when the socket failed.
    bool writeDue(Clock::time_point now);
    // True once the connection is to be closed: the close switch's last
    // reply is out, or the draining after a last line is over.
    bool done(Clock::time_point now) const;

private:
    struct Outgoing
    {
        std::string bytes;
        std::size_t sent = 0;
        Clock::time_point due;
        bool reply = false;
    };

    bool readShare(std::size_t share);
    void noteInput(std::size_t from);

    int m_socket;
    const FaultSwitches& m_faults;
    std::size_t m_maxLine;
    // Unanswered input: taken lines end at m_begin, complete lines at m_lineEnd.
    std::string m_input;
    std::size_t m_begin = 0;
    std::size_t m_lineEnd = 0;
    bool m_tooLong = false;
    std::deque<Outgoing> m_output;
    std::size_t m_waitingBytes = 0;
    unsigned long long m_requests = 0;
    unsigned long long m_repliesQueued = 0;
    unsigned long long m_repliesSent = 0;
    bool m_closing = false;
    bool m_lastLineQueued = false;
    bool m_draining = false;
    Clock::time_point m_drainEnd;
};
