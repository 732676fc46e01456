#pragma once

#include <iostream>
#include <sstream>
#include <string>

// Redirects std::cout and std::wcout into strings while it lives.
class ConsoleCapture final
{
public:
    ConsoleCapture()
        : m_narrow(std::cout.rdbuf(m_narrowText.rdbuf()))
        , m_wide(std::wcout.rdbuf(m_wideText.rdbuf()))
    {
    }
    ~ConsoleCapture()
    {
        std::cout.rdbuf(m_narrow);
        std::wcout.rdbuf(m_wide);
    }
    ConsoleCapture(const ConsoleCapture&) = delete;
    ConsoleCapture& operator=(const ConsoleCapture&) = delete;

    std::string text() const { return m_narrowText.str(); }
    std::wstring wideText() const { return m_wideText.str(); }
    void clear()
    {
        m_narrowText.str({});
        m_wideText.str({});
    }

private:
    std::ostringstream m_narrowText;
    std::wostringstream m_wideText;
    std::streambuf* m_narrow;
    std::wstreambuf* m_wide;
};

// The lines written to a log stream so far, each with its line feed; the
// stream is empty afterwards.
inline std::string taken(std::ostringstream& log)
{
    std::string text = log.str();
    log.str({});
    return text;
}
