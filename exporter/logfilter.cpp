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
    static const char* const InfoStarts[] = {"korvane-exporter: reading ", "korvane-exporter: stopped"};
    for (const char* start : InfoStarts) {
        if (line.rfind(start, 0) == 0)
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
