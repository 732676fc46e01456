#include "loglevel.h"

bool parseLogLevel(const std::string& word, LogLevel& level)
{
    static const struct
    {
        LogLevel level;
        const char* name;
    } Levels[] = {{LogLevel::Debug, "debug"}, {LogLevel::Info, "info"}, {LogLevel::Warn, "warn"},
        {LogLevel::Error, "error"}};
    for (const auto& named : Levels) {
        if (word == named.name) {
            level = named.level;
            return true;
        }
    }
    return false;
}
