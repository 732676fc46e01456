#pragma once

#include <string>
#include <sys/types.h>

// Another process's CPU time, memory and threads, from /proc.
class ProcStats final
{
public:
    explicit ProcStats(pid_t pid);

    // utime + stime, in seconds.
    double cpuSeconds() const;
    long residentKiB() const { return statusValue("VmRSS:"); }
    long peakResidentKiB() const { return statusValue("VmHWM:"); }
    long threads() const { return statusValue("Threads:"); }

private:
    long statusValue(const std::string& name) const;

    const std::string m_directory;
};
