#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "eventqueue.h"

class BeastSession;

// The open streams of the event-driven server. Each session owns its queue
// and runs on its own strand; the hub only hands the event over.
class BeastHub final
{
public:
    BeastHub() = default;
    BeastHub(const BeastHub&) = delete;
    BeastHub& operator=(const BeastHub&) = delete;

    void add(std::shared_ptr<BeastSession> session);
    void remove(const std::shared_ptr<BeastSession>& session);
    void publish(const EventQueue::Event& event);

private:
    std::mutex m_mutex;
    std::vector<std::shared_ptr<BeastSession>> m_sessions;
};
