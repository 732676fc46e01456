#pragma once

#include <cstddef>
#include <memory>

// Bytes received but not yet consumed. Reads go straight into the free space
// at the end (never zeroed first), consumed lines only move the start, and the
// storage grows by doubling, so one long line costs time linear in its length.
class ReceiveBuffer final
{
public:
    ReceiveBuffer() = default;
    ReceiveBuffer(const ReceiveBuffer&) = delete;
    ReceiveBuffer& operator=(const ReceiveBuffer&) = delete;

    const char* data() const { return m_storage.get() + m_begin; }
    std::size_t size() const { return m_end - m_begin; }

    // Free space for at least bytes more at the end; commit what was written.
    char* reserve(std::size_t bytes);
    void commit(std::size_t bytes);

    // Drops bytes from the front. The memory stays readable until the next reserve().
    void consume(std::size_t bytes);
    void clear();

private:
    std::unique_ptr<char[]> m_storage;
    std::size_t m_capacity = 0;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};
