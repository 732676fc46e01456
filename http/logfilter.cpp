#include "logfilter.h"

LogFilter::LogFilter(std::streambuf* target, LogLevel level)
    : m_target(target)
    , m_level(level)
{
}

LogFilter::~LogFilter()
{
    flushLine();
}

LogLevel LogFilter::levelOf(const std::string& line)
{
    // "PROGRAM: text"
    const std::size_t colon = line.find(": ");
    const std::size_t text = colon == std::string::npos ? 0 : colon + 2;
    static const char* const InfoStarts[] = {"reading ", "stopped"};
    for (const char* start : InfoStarts) {
        if (line.compare(text, std::char_traits<char>::length(start), start) == 0)
            return LogLevel::Info;
    }
    return LogLevel::Warn;
}

int LogFilter::overflow(int c)
{
    if (c == traits_type::eof())
        return traits_type::not_eof(c);
    m_line += static_cast<char>(c);
    if (c == '\n')
        flushLine();
    return c;
}

int LogFilter::sync()
{
    return m_target->pubsync();
}

void LogFilter::flushLine()
{
    if (m_line.empty())
        return;
    if (levelOf(m_line) >= m_level)
        m_target->sputn(m_line.data(), static_cast<std::streamsize>(m_line.size()));
    m_line.clear();
    m_target->pubsync();
}
