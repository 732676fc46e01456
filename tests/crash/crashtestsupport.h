#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

// Helpers of the crash tests: private directories, child processes and a
// reader for the minidump files they leave.
namespace CrashTest {

// A fresh directory under /tmp, removed with everything in it.
class TemporaryDirectory final
{
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    const std::string& path() const { return m_path; }

private:
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    std::string m_path;
};

struct ProcessResult
{
    pid_t pid = 0;
    int status = 0; // as from waitpid
};

// Runs a program with the current environment plus the given variables and
// waits for it.
ProcessResult runProcess(
    const std::vector<std::string>& arguments, const std::map<std::string, std::string>& environment);

// Waits up to timeoutMs for a file to exist.
bool waitForFile(const std::string& path, int timeoutMs = 20000);
bool fileExists(const std::string& path);
std::string readFile(const std::string& path);

// key=value lines of the stand-in reporter's record; "argv" repeats, so
// it comes back as a list.
struct ReporterRecord
{
    std::vector<std::string> arguments;
    std::string dataDirectory;
};
ReporterRecord readReporterRecord(const std::string& path);

class MinidumpFile final
{
public:
    explicit MinidumpFile(const std::string& path);

    bool isValid() const { return m_valid; }
    std::uint32_t signature() const { return u32(0); }
    std::uint32_t version() const { return u32(4); }
    std::uint32_t streamCount() const { return u32(8); }
    std::vector<std::uint32_t> streamTypes() const;
    // Offset and size of the first stream of that type; size 0 when absent.
    std::pair<std::uint32_t, std::uint32_t> stream(std::uint32_t type) const;
    std::string streamBytes(std::uint32_t type) const;

    std::uint32_t u32(std::size_t offset) const;
    std::uint64_t u64(std::size_t offset) const;
    std::uint16_t u16(std::size_t offset) const;
    // A MINIDUMP_STRING at the offset, as UTF-8 (ASCII paths only).
    std::string string(std::size_t offset) const;
    const std::string& bytes() const { return m_bytes; }

private:
    std::string m_bytes;
    bool m_valid = false;
};

} // namespace CrashTest
