#pragma once

#include <streambuf>

// Sends std::cout nowhere while it lives: the code under test writes console
// lines that would only slow a fuzzing run down.
class QuietConsole final : public std::streambuf
{
public:
    QuietConsole();
    ~QuietConsole() override;
    QuietConsole(const QuietConsole&) = delete;
    QuietConsole& operator=(const QuietConsole&) = delete;

protected:
    int overflow(int c) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;

private:
    std::streambuf* m_old;
};
