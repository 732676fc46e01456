#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

// Helpers of the crash tests: child processes with an environment of their
// own and a reader for the minidump files they leave.
namespace CrashTest {

struct ProcessResult
{
    pid_t pid = 0;
    int status = 0; // as from waitpid
};

// Runs a program with the current environment plus the given variables and
// waits for it; after timeoutMs (0: no limit) it is killed.
ProcessResult runProcess(const std::vector<std::string>& arguments,
    const std::map<std::string, std::string>& environment, int timeoutMs = 0);

// key=value lines of the stand-in reporter's record; "argv" repeats, so
// it comes back as a list.
struct ReporterRecord
{
    std::vector<std::string> arguments;
    std::string dataDirectory;
};
ReporterRecord readReporterRecord(const std::string& path);

// Runs a program and returns what it wrote on standard output.
std::string commandOutput(const std::vector<std::string>& arguments);

// A dump as Breakpad's own processor reads it: minidump_stackwalk for the
// machine-readable stacks, minidump_dump for the streams and thread ids.
struct StackFrame
{
    std::string module;
    std::string function; // empty when no symbols name it
};

struct DumpThread
{
    std::uint32_t id = 0;
    std::vector<StackFrame> frames;
    // The index of the first frame whose function starts with the name;
    // -1 when there is none.
    int frameOf(const std::string& function) const;
};

struct ProcessedDump
{
    std::string os; // OS line: "Linux"
    std::string osVersion; // "0.0.0 Linux 6.1.0 ..."
    std::string cpu; // "amd64"
    std::string cpuInfo; // "family 6 model 85 stepping 7"
    std::string crashReason; // "SIGSEGV /SEGV_MAPERR"
    std::string crashAddress; // "0x10"
    int crashingThread = -1; // index into threads
    std::uint32_t exceptionThreadId = 0;
    std::vector<DumpThread> threads;
    std::vector<std::string> modules; // code file paths
    std::vector<std::string> streams; // "MD_LINUX_CPU_INFO", ...
    std::string stackwalk; // the processor's own text, for messages

    const DumpThread& crashing() const { return threads.at(static_cast<std::size_t>(crashingThread)); }
    bool hasStream(const std::string& name) const;
};

// symbolPaths: symbol stores (<module>/<id>/<module>.sym) to read.
ProcessedDump processDump(const std::string& dumpPath, const std::vector<std::string>& symbolPaths);

// Writes symbols for the shared libraries of the system (C library, Qt...)
// that the dump lists, into a store of their own, so the processor can
// unwind through them by their call frame information. Already present
// ones are kept.
void writeSystemSymbols(const std::string& dumpPath, const std::string& store);

} // namespace CrashTest
