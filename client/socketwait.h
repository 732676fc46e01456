#pragma once

#include <chrono>
#include <optional>

class InterruptEvent;

using SteadyClock = std::chrono::steady_clock;
// A point in time by which something must be done; none: no limit.
using Deadline = std::optional<SteadyClock::time_point>;

enum class WaitResult
{
    Ready,
    TimedOut,
    Interrupted,
};

// Waits until fd shows one of events (POLLIN, POLLOUT), the deadline passes
// or the interruption is raised. A signal that breaks the wait off without
// raising the interruption does not end it. An error on fd counts as ready,
// so that the next call on it reports the error.
WaitResult waitForDescriptor(int fd, short events, const Deadline& deadline, const InterruptEvent& interrupt);
