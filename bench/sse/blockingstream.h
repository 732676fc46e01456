#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "eventqueue.h"

// One stream's events for a server that gives each stream its own thread:
// the publisher pushes, the stream's thread waits for the next one.
class BlockingStream final
{
public:
    explicit BlockingStream(std::size_t queueLimit);
    BlockingStream(const BlockingStream&) = delete;
    BlockingStream& operator=(const BlockingStream&) = delete;

    bool push(EventQueue::Event event);
    // Null when nothing came within the wait.
    EventQueue::Event next(std::chrono::milliseconds wait);
    std::size_t drops() const;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_ready;
    EventQueue m_queue;
};
