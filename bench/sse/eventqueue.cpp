#include "eventqueue.h"

EventQueue::EventQueue(std::size_t limit)
    : m_limit(limit)
{
}

bool EventQueue::push(Event event)
{
    bool dropped = false;
    if (!m_events.empty() && m_bytes + event->size() > m_limit) {
        clear();
        ++m_drops;
        dropped = true;
    }
    m_bytes += event->size();
    m_events.push_back(std::move(event));
    return dropped;
}

EventQueue::Event EventQueue::pop()
{
    if (m_events.empty())
        return nullptr;
    Event event = std::move(m_events.front());
    m_events.pop_front();
    m_bytes -= event->size();
    return event;
}

void EventQueue::clear()
{
    m_events.clear();
    m_bytes = 0;
}
