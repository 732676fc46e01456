#include "receivebuffer.h"

#include <algorithm>
#include <cstring>

char* ReceiveBuffer::reserve(std::size_t bytes)
{
    if (m_capacity - m_end >= bytes)
        return m_storage.get() + m_end;

    const std::size_t used = m_end - m_begin;
    if (m_begin > 0 && m_capacity - used >= bytes) {
        std::memmove(m_storage.get(), m_storage.get() + m_begin, used);
    } else {
        const std::size_t capacity = std::max(m_capacity * 2, used + bytes);
        // Left uninitialised on purpose: every byte is written by recv before it is read.
        std::unique_ptr<char[]> storage(new char[capacity]);
        if (used > 0)
            std::memcpy(storage.get(), m_storage.get() + m_begin, used);
        m_storage = std::move(storage);
        m_capacity = capacity;
    }
    m_begin = 0;
    m_end = used;
    return m_storage.get() + m_end;
}

void ReceiveBuffer::commit(std::size_t bytes)
{
    m_end += bytes;
}

void ReceiveBuffer::consume(std::size_t bytes)
{
    m_begin += bytes;
    if (m_begin == m_end)
        m_begin = m_end = 0;
}

void ReceiveBuffer::clear()
{
    m_storage.reset();
    m_capacity = 0;
    m_begin = m_end = 0;
}
