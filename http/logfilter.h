#pragma once

#include <streambuf>
#include <string>

#include "loglevel.h"

// Passes whole lines on to another stream buffer, leaving out those below
// the level. The programs' lines ("PROGRAM: text") carry no level of their
// own: a line that says the reading is back or the program stopped is info,
// every other one (a failed reading) a warning. Used by one thread at a time.
class LogFilter final : public std::streambuf
{
public:
    LogFilter(std::streambuf* target, LogLevel level);
    ~LogFilter() override;
    LogFilter(const LogFilter&) = delete;
    LogFilter& operator=(const LogFilter&) = delete;

    static LogLevel levelOf(const std::string& line);

protected:
    int overflow(int c) override;
    int sync() override;

private:
    void flushLine();

    std::streambuf* m_target;
    LogLevel m_level;
    std::string m_line;
};
