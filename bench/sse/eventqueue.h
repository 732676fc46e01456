#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>

// The events waiting for one stream, shared with every other stream. Once the
// waiting bytes would pass the limit, the waiting events are dropped; the
// stream then gets only the newest one (where the real program would send a
// snapshot).
class EventQueue final
{
public:
    explicit EventQueue(std::size_t limit);
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    using Event = std::shared_ptr<const std::string>;

    // Whether waiting events were dropped to make room.
    bool push(Event event);
    Event pop();
    void clear();

    bool empty() const { return m_events.empty(); }
    std::size_t waitingBytes() const { return m_bytes; }
    std::size_t drops() const { return m_drops; }

private:
    const std::size_t m_limit;
    std::deque<Event> m_events;
    std::size_t m_bytes = 0;
    std::size_t m_drops = 0;
};
