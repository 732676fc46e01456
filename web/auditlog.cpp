#include "auditlog.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <ostream>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>

#include "eventframe.h"

AuditLog::AuditLog(std::string file, std::ostream& log)
    : m_file(std::move(file))
    , m_log(log)
{
}

AuditLog::~AuditLog()
{
    if (m_fd != -1)
        ::close(m_fd);
}

bool AuditLog::open(std::string& error)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return openLocked(error);
}

void AuditLog::reopen()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file.empty())
        return;
    if (m_fd != -1)
        ::close(m_fd);
    m_fd = -1;
    std::string error;
    if (!openLocked(error))
        m_log << "korvane-web: " << error << std::endl;
}

bool AuditLog::openLocked(std::string& error)
{
    if (m_file.empty())
        return true;
    m_fd = ::open(m_file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640);
    if (m_fd == -1) {
        m_openError = "cannot open the audit file " + m_file + ": " + std::generic_category().message(errno);
        error = m_openError;
        return false;
    }
    m_openError.clear();
    return true;
}

bool AuditLog::ready(std::string& why)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file.empty())
        return true;
    if (m_fd == -1 && !openLocked(why))
        return false;
    struct statvfs disk
    {
    };
    if (::fstatvfs(m_fd, &disk) == 0) {
        const long long free = static_cast<long long>(disk.f_bavail) * static_cast<long long>(disk.f_frsize);
        if (free < MinimumFreeBytes) {
            why = "the disk of the audit file " + m_file + " is full (" + std::to_string(free)
                + " bytes free)";
            return false;
        }
    }
    return true;
}

bool AuditLog::write(const Json::Value& entry, std::string& why)
{
    const std::string line = compactJson(entry) + "\n";
    std::lock_guard<std::mutex> lock(m_mutex);
    m_log << "korvane-web: audit " << line << std::flush;
    if (m_file.empty())
        return true;
    if (m_fd == -1 && !openLocked(why))
        return false;
    std::size_t written = 0;
    while (written < line.size()) {
        const ssize_t n = ::write(m_fd, line.data() + written, line.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            why = "cannot write the audit file " + m_file + ": "
                + std::generic_category().message(n < 0 ? errno : EIO);
            return false;
        }
        written += static_cast<std::size_t>(n);
    }
    if (::fdatasync(m_fd) != 0) {
        why = "cannot flush the audit file " + m_file + ": " + std::generic_category().message(errno);
        return false;
    }
    return true;
}

std::string AuditLog::timeText()
{
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto millis
        = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm utc {};
    ::gmtime_r(&seconds, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    char full[40];
    std::snprintf(full, sizeof full, "%s.%03dZ", text, static_cast<int>(millis));
    return full;
}
