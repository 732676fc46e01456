#include "eventring.h"

EventRing::EventRing(std::size_t capacity)
    : m_capacity(capacity)
{
}

void EventRing::push(std::uint64_t seq, EventFrame frame)
{
    if (m_entries.size() == m_capacity)
        m_entries.pop_front();
    m_entries.push_back({seq, std::move(frame)});
}

std::optional<std::vector<EventFrame>> EventRing::after(std::uint64_t seq) const
{
    if (m_entries.empty())
        return std::nullopt;
    const std::uint64_t oldest = m_entries.front().seq;
    const std::uint64_t newest = m_entries.back().seq;
    if (seq + 1 < oldest || seq > newest)
        return std::nullopt;
    std::vector<EventFrame> frames;
    for (std::size_t i = static_cast<std::size_t>(seq + 1 - oldest); i < m_entries.size(); ++i)
        frames.push_back(m_entries[i].frame);
    return frames;
}
