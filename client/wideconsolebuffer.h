#pragma once

#include <cstdio>
#include <cwchar>
#include <streambuf>

// A wide stream buffer that writes into a narrow FILE. glibc's own wide
// standard output writes with fputwc, which turns stdout wide-oriented for
// good; every narrow write after that (std::cout, printf) then fails and the
// console goes quiet. This buffer converts each wide character to the C
// locale's multibyte form itself and writes the bytes, so stdout stays
// byte-oriented and wide and narrow lines keep their order in one buffer.
class WideConsoleBuffer final : public std::wstreambuf
{
public:
    explicit WideConsoleBuffer(std::FILE* file);
    ~WideConsoleBuffer() override;
    WideConsoleBuffer(const WideConsoleBuffer&) = delete;
    WideConsoleBuffer& operator=(const WideConsoleBuffer&) = delete;

    // Gives std::wcout a buffer of this kind onto stdout. Call it before any
    // thread writes to std::wcout; the buffer is never destroyed, since the
    // standard streams are flushed after static objects have gone.
    static void installOnStandardOutput();

protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char_type* text, std::streamsize count) override;
    int sync() override;

private:
    bool put(wchar_t c);

    std::FILE* m_file;
    std::mbstate_t m_state {};
};
