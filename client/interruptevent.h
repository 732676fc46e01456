#pragma once

#include <atomic>

// A wake-up that another thread, or a signal handler, raises to end the
// waits of one owner. It stays raised until cleared, so that a raise between
// two waits is not lost. The descriptor is polled beside the one waited on.
class InterruptEvent final
{
public:
    InterruptEvent();
    ~InterruptEvent();
    InterruptEvent(const InterruptEvent&) = delete;
    InterruptEvent& operator=(const InterruptEvent&) = delete;
    InterruptEvent(InterruptEvent&&) = delete;
    InterruptEvent& operator=(InterruptEvent&&) = delete;

    // Thread-safe and async-signal-safe.
    void raise();
    void clear();
    bool isRaised() const { return m_raised.load(); }
    // Readable while raised.
    int descriptor() const { return m_fd; }

private:
    int m_fd = -1;
    std::atomic<bool> m_raised {false};
};
