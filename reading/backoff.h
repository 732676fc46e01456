#pragma once

#include <chrono>

// Spacing of connection attempts while the server stays away: after the
// first failure the next attempt waits 1 s, then 2, 4, 8 and at most 16 s.
// A success starts over.
class Backoff final
{
public:
    using Clock = std::chrono::steady_clock;

    Backoff() = default;

    bool mayTry(Clock::time_point now) const { return now >= m_next; }
    void failed(Clock::time_point now);
    void succeeded();

    // The wait set by the last failure; zero after a success.
    std::chrono::seconds delay() const { return m_delay; }
    // When the next attempt may be made.
    Clock::time_point nextAttempt() const { return m_next; }

    static constexpr std::chrono::seconds First {1};
    static constexpr std::chrono::seconds Longest {16};

private:
    std::chrono::seconds m_delay {0};
    Clock::time_point m_next {};
};
