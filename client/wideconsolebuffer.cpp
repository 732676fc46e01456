#include "wideconsolebuffer.h"

#include <climits>
#include <iostream>

WideConsoleBuffer::WideConsoleBuffer(std::FILE* file)
    : m_file(file)
{
}

WideConsoleBuffer::~WideConsoleBuffer() = default;

void WideConsoleBuffer::installOnStandardOutput()
{
    static WideConsoleBuffer* const buffer = [] {
        auto* created = new WideConsoleBuffer(stdout);
        std::wcout.rdbuf(created);
        return created;
    }();
    (void)buffer;
}

bool WideConsoleBuffer::put(wchar_t c)
{
    char bytes[MB_LEN_MAX];
    std::size_t length = std::wcrtomb(bytes, c, &m_state); // NOLINT(concurrency-mt-unsafe): own state passed
    if (length == static_cast<std::size_t>(-1)) {
        // not representable in this locale: a stand-in, and a fresh state
        m_state = std::mbstate_t {};
        bytes[0] = '?';
        length = 1;
    }
    return std::fwrite(bytes, 1, length, m_file) == length;
}

WideConsoleBuffer::int_type WideConsoleBuffer::overflow(int_type c)
{
    if (traits_type::eq_int_type(c, traits_type::eof()))
        return traits_type::not_eof(c);
    return put(traits_type::to_char_type(c)) ? c : traits_type::eof();
}

std::streamsize WideConsoleBuffer::xsputn(const char_type* text, std::streamsize count)
{
    std::streamsize written = 0;
    while (written < count && put(text[written]))
        ++written;
    return written;
}

int WideConsoleBuffer::sync()
{
    return std::fflush(m_file) == 0 ? 0 : -1;
}
