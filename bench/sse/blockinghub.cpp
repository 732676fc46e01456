#include "blockinghub.h"

#include <algorithm>

void BlockingHub::add(std::shared_ptr<BlockingStream> stream)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_streams.push_back(std::move(stream));
}

void BlockingHub::remove(const std::shared_ptr<BlockingStream>& stream)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_streams.erase(std::remove(m_streams.begin(), m_streams.end(), stream), m_streams.end());
}

std::size_t BlockingHub::publish(const EventQueue::Event& event)
{
    std::vector<std::shared_ptr<BlockingStream>> streams;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        streams = m_streams;
    }
    std::size_t drops = 0;
    for (const std::shared_ptr<BlockingStream>& stream : streams)
        drops += stream->push(event) ? 1 : 0;
    return drops;
}
