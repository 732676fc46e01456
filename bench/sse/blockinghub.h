#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "blockingstream.h"

// The open streams of the thread-per-stream server.
class BlockingHub final
{
public:
    BlockingHub() = default;
    BlockingHub(const BlockingHub&) = delete;
    BlockingHub& operator=(const BlockingHub&) = delete;

    void add(std::shared_ptr<BlockingStream> stream);
    void remove(const std::shared_ptr<BlockingStream>& stream);
    // How many streams dropped their waiting events for this one.
    std::size_t publish(const EventQueue::Event& event);

private:
    std::mutex m_mutex;
    std::vector<std::shared_ptr<BlockingStream>> m_streams;
};
