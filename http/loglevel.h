#pragma once

#include <string>

enum class LogLevel
{
    Debug,
    Info,
    Warn,
    Error,
};

// "debug", "info", "warn" or "error"; false for any other word.
bool parseLogLevel(const std::string& word, LogLevel& level);
