#include "backoff.h"

#include <algorithm>

void Backoff::failed(Clock::time_point now)
{
    m_delay = m_delay.count() == 0 ? First : std::min(m_delay * 2, Longest);
    m_next = now + m_delay;
}

void Backoff::succeeded()
{
    m_delay = std::chrono::seconds(0);
    m_next = {};
}
