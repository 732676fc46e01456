#include "beasthub.h"

#include <algorithm>

#include "beastsession.h"

void BeastHub::add(std::shared_ptr<BeastSession> session)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sessions.push_back(std::move(session));
}

void BeastHub::remove(const std::shared_ptr<BeastSession>& session)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sessions.erase(std::remove(m_sessions.begin(), m_sessions.end(), session), m_sessions.end());
}

void BeastHub::publish(const EventQueue::Event& event)
{
    std::vector<std::shared_ptr<BeastSession>> sessions;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        sessions = m_sessions;
    }
    for (const std::shared_ptr<BeastSession>& session : sessions)
        session->post(event);
}
