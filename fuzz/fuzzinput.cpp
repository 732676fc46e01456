#include "fuzzinput.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

void fuzzRequire(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "expectation failed: %s\n", what);
    std::abort();
}

FuzzInput::FuzzInput(const std::uint8_t* data, std::size_t size)
    : m_data(data)
    , m_end(size)
{
}

std::uint8_t FuzzInput::takeByte()
{
    if (m_begin == m_end)
        return 0;
    return m_data[--m_end];
}

std::size_t FuzzInput::takeNumber(std::size_t max)
{
    std::size_t value = takeByte();
    if (max > 255)
        value = (value << 8) | takeByte();
    return max == 0 ? 0 : value % (max + 1);
}

std::string FuzzInput::takeBytes(std::size_t count)
{
    count = std::min(count, remaining());
    std::string bytes(reinterpret_cast<const char*>(m_data + m_begin), count);
    m_begin += count;
    return bytes;
}

std::string FuzzInput::takeRest()
{
    return takeBytes(remaining());
}
