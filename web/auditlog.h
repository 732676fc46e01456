#pragma once

#include <iosfwd>
#include <mutex>
#include <string>

#include <json/value.h>

// The audit trail: one JSON line per action, allowed or refused, appended to
// a file and flushed to its disk before the action's reply leaves, and the
// same line on the log. Without a file the log alone carries it.
//
// An action is carried out only when its line can be written: ready() says
// whether the file is open and its disk has room, and the action is refused
// when it is not. reopen() (on SIGHUP) lets logrotate move the file away.
// Thread-safe.
class AuditLog final
{
public:
    // Below this much free space on the file's disk, actions are refused.
    static constexpr long long MinimumFreeBytes = 64LL * 1024;

    AuditLog(std::string file, std::ostream& log);
    ~AuditLog();
    AuditLog(const AuditLog&) = delete;
    AuditLog& operator=(const AuditLog&) = delete;

    // Opens the file; false with the reason when it cannot be.
    bool open(std::string& error);
    void reopen();
    bool ready(std::string& why);
    // Appends the line; false with the reason when it could not be written.
    bool write(const Json::Value& entry, std::string& why);

    // "2026-11-24T16:30:00.123Z"
    static std::string timeText();

private:
    bool openLocked(std::string& error);

    const std::string m_file;
    std::ostream& m_log;
    std::mutex m_mutex;
    int m_fd = -1;
    std::string m_openError;
};
