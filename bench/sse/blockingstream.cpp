#include "blockingstream.h"

BlockingStream::BlockingStream(std::size_t queueLimit)
    : m_queue(queueLimit)
{
}

bool BlockingStream::push(EventQueue::Event event)
{
    bool dropped = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        dropped = m_queue.push(std::move(event));
    }
    m_ready.notify_one();
    return dropped;
}

EventQueue::Event BlockingStream::next(std::chrono::milliseconds wait)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_ready.wait_for(lock, wait, [this] { return !m_queue.empty(); });
    return m_queue.pop();
}

std::size_t BlockingStream::drops() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_queue.drops();
}
