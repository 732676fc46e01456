#include "procstats.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <unistd.h>

ProcStats::ProcStats(pid_t pid)
    : m_directory("/proc/" + std::to_string(pid))
{
}

double ProcStats::cpuSeconds() const
{
    std::ifstream file(m_directory + "/stat");
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    // The command name may hold spaces and parentheses; the fields follow its last ')'.
    const std::size_t close = text.rfind(')');
    if (close == std::string::npos)
        return -1.0;
    std::istringstream fields(text.substr(close + 2));
    std::string field;
    unsigned long long utime = 0;
    unsigned long long stime = 0;
    // From "state" (field 3) to utime (14) and stime (15).
    for (int number = 3; number <= 15 && fields >> field; ++number) {
        if (number == 14)
            utime = std::stoull(field);
        else if (number == 15)
            stime = std::stoull(field);
    }
    return static_cast<double>(utime + stime) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

long ProcStats::statusValue(const std::string& name) const
{
    std::ifstream status(m_directory + "/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(name, 0) == 0)
            return std::stol(line.substr(name.size()));
    return -1;
}
