#include "interruptevent.h"

#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

InterruptEvent::InterruptEvent()
    : m_fd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

InterruptEvent::~InterruptEvent()
{
    if (m_fd != -1)
        ::close(m_fd);
}

void InterruptEvent::raise()
{
    m_raised.store(true);
    const std::uint64_t one = 1;
    // Only write() here: this runs in signal handlers too.
    [[maybe_unused]] const ssize_t written = ::write(m_fd, &one, sizeof one);
}

void InterruptEvent::clear()
{
    m_raised.store(false);
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t read = ::read(m_fd, &count, sizeof count);
}
