#include <cstdio>
#include <filesystem>
#include <ostream>
#include <regex>
#include <signal.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "crashtestsupport.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace CrashTest;

namespace {

struct CrashCase
{
    const char* kind;
    int signalNumber;
    const char* reason; // how the processor names the signal
    const char* function; // where it happens
    bool otherThread;
};

void PrintTo(const CrashCase& crashCase, std::ostream* out)
{
    *out << crashCase.kind;
}

std::string describe(int status)
{
    if (WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    if (WIFEXITED(status))
        return "exit " + std::to_string(WEXITSTATUS(status));
    return "status " + std::to_string(status);
}

class CrashInChild : public ::testing::TestWithParam<CrashCase>
{
protected:
    void TearDown() override
    {
        for (const std::string& path : m_created)
            std::remove(path.c_str());
    }

    // Runs the helper; returns its wait status and, when a reporter was
    // started, what it recorded.
    ProcessResult crash(const char* mode, const char* kind)
    {
        return runProcess(
            {KORVANE_CRASH_HELPER_PROGRAM, mode, kind, m_application.path() + "/korvane-monitor"},
            {{"HOME", m_home.path()}, {"KORVANE_TEST_REPORTER_RECORD", record()},
                {"KORVANE_TEST_MEMORY_BYTES", "8589934592"}});
    }

    std::string record() const { return m_application.path() + "/record"; }

    void SetUp() override
    {
        std::filesystem::copy_file(KORVANE_STANDIN_REPORTER_PROGRAM, m_application.path() + "/crashreporter");
    }

    // Reads the record and remembers the dump and .extra for removal.
    ReporterRecord reporterRecord()
    {
        EXPECT_TRUE(waitForFile(record())) << "the reporter was not started";
        ReporterRecord seen = readReporterRecord(record());
        if (seen.arguments.size() == 2) {
            const std::string dump = seen.arguments[1];
            m_created.push_back(dump);
            m_created.push_back(dump.substr(0, dump.size() - 4) + ".extra");
        }
        return seen;
    }

    TempDirectory m_home;
    TempDirectory m_application;
    std::vector<std::string> m_created;
};

const std::regex dumpPathPattern(
    "^/tmp//([0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{8}-[0-9a-f]{8})\\.dmp$");

// Breakpad's processor, with our symbols and those of the system's
// libraries it unwinds through.
ProcessedDump process(const std::string& dumpPath)
{
    writeSystemSymbols(dumpPath, KORVANE_SYSTEM_SYMBOLS_DIR);
    return processDump(dumpPath, {KORVANE_SYMBOLS_DIR, KORVANE_SYSTEM_SYMBOLS_DIR});
}

} // namespace

TEST_P(CrashInChild, WritesDumpAndExtraStartsReporterAndEndsAsWithoutHandler)
{
    const CrashCase crashCase = GetParam();
    [[maybe_unused]] const ProcessResult baseline = crash("noinstall", crashCase.kind);
    ASSERT_FALSE(pathExists(record())) << "no handler, no reporter";
    const ProcessResult result = crash("install", crashCase.kind);
    // After the dump the signal ends the process as it would have without
    // the handler. A sanitizer ends it its own way when nothing else
    // handles the signal, so there only the signal itself is checked.
    EXPECT_EQ(describe(result.status), "signal " + std::to_string(crashCase.signalNumber));
#ifndef KORVANE_SANITIZED
    EXPECT_EQ(describe(result.status), describe(baseline.status));
#endif

    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    EXPECT_EQ(seen.arguments[0], m_application.path() + "/crashreporter");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(seen.arguments[1], match, dumpPathPattern)) << seen.arguments[1];
    EXPECT_EQ(seen.dataDirectory, m_home.path() + "/.korvane/monitor/Crash Reports");

    const std::string id = match[1];
    EXPECT_EQ(readFile("/tmp/" + id + ".extra"),
        "ProductName=Monitor\n"
        "ServerURL=https://crash-reports.korvane.com/submit\n"
        "System=Linux 64bit\n"
        "SystemMemory=8.00 GB\n"
        "Vendor=Korvane\n"
        "Version=0.1.0.2834\n");

    // Breakpad's own processor reads it, with the helper's symbols.
    const ProcessedDump dump = process("/tmp/" + id + ".dmp");
    EXPECT_EQ(dump.os, "Linux");
    EXPECT_NE(dump.osVersion.find("Linux "), std::string::npos) << dump.osVersion;
    EXPECT_EQ(dump.cpu, "amd64");
    EXPECT_EQ(dump.cpuInfo.rfind("family ", 0), 0u);
    EXPECT_NE(dump.cpuInfo.rfind("family 0 ", 0), 0u) << dump.cpuInfo;
    for (const char* stream : {"MD_THREAD_LIST_STREAM", "MD_MODULE_LIST_STREAM", "MD_EXCEPTION_STREAM",
             "MD_SYSTEM_INFO_STREAM", "MD_LINUX_CPU_INFO", "MD_LINUX_PROC_STATUS", "MD_LINUX_CMD_LINE",
             "MD_LINUX_ENVIRON", "MD_LINUX_AUXV", "MD_LINUX_MAPS", "MD_LINUX_DSO_DEBUG"})
        EXPECT_TRUE(dump.hasStream(stream)) << stream;

    EXPECT_EQ(dump.crashReason.rfind(crashCase.reason, 0), 0u) << dump.crashReason;
    ASSERT_GE(dump.crashingThread, 0) << dump.stackwalk;
    const DumpThread& crashed = dump.crashing();
    EXPECT_EQ(crashed.id, dump.exceptionThreadId);
    ASSERT_FALSE(crashed.frames.empty());
    EXPECT_EQ(crashed.frames[0].module, "crash_helper") << dump.stackwalk;
    EXPECT_EQ(crashed.frames[0].function.rfind(crashCase.function, 0), 0u) << dump.stackwalk;

    if (crashCase.otherThread) {
        // Every thread is in the dump: the main thread waits for the one
        // that crashed, and its stack reaches main.
        EXPECT_GE(dump.threads.size(), 2u);
        EXPECT_NE(crashed.id, static_cast<std::uint32_t>(result.pid));
        bool mainThreadFound = false;
        for (const DumpThread& thread : dump.threads) {
            if (thread.id != static_cast<std::uint32_t>(result.pid))
                continue;
            mainThreadFound = true;
            EXPECT_GE(thread.frameOf("main"), 0) << dump.stackwalk;
        }
        EXPECT_TRUE(mainThreadFound) << dump.stackwalk;
    } else {
        EXPECT_EQ(crashed.id, static_cast<std::uint32_t>(result.pid));
        EXPECT_GE(crashed.frameOf("main"), 1) << dump.stackwalk;
    }
    if (std::string(crashCase.kind) == "segv" || crashCase.otherThread) {
        EXPECT_EQ(dump.crashAddress, "0x10");
    }

    const std::string helperPath = std::filesystem::canonical(KORVANE_CRASH_HELPER_PROGRAM).string();
    EXPECT_NE(std::find(dump.modules.begin(), dump.modules.end(), helperPath), dump.modules.end());
}

INSTANTIATE_TEST_SUITE_P(EverySignal, CrashInChild,
    ::testing::Values(CrashCase {"segv", SIGSEGV, "SIGSEGV /SEGV_MAPERR", "korvaneFaultHere", false},
        CrashCase {"bus", SIGBUS, "SIGBUS / BUS_ADRERR", "korvaneBusErrorHere", false},
        CrashCase {"fpe", SIGFPE, "SIGFPE / FPE_INTDIV", "korvaneDivideByZeroHere", false},
        CrashCase {"ill", SIGILL, "SIGILL / ILL_ILLOPN", "korvaneIllegalInstructionHere", false},
        CrashCase {"abrt", SIGABRT, "SIGABRT", "korvaneAbortSignalHere", false},
        CrashCase {"thread", SIGSEGV, "SIGSEGV /SEGV_MAPERR", "korvaneFaultHere", true}),
    [](const ::testing::TestParamInfo<CrashCase>& info) { return std::string(info.param.kind); });

TEST_F(CrashInChild, EmptyAnnotationTextStartsReporterButWritesNoExtra)
{
    crash("empty", "segv");
    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    std::smatch match;
    ASSERT_TRUE(std::regex_match(seen.arguments[1], match, dumpPathPattern));
    EXPECT_TRUE(pathExists("/tmp/" + std::string(match[1]) + ".dmp"));
    EXPECT_FALSE(pathExists("/tmp/" + std::string(match[1]) + ".extra"));
}

TEST_F(CrashInChild, DumpsGoToTmpNotToTheDataDirectory)
{
    crash("install", "abrt");
    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    EXPECT_EQ(seen.arguments[1].rfind("/tmp//", 0), 0u);
    EXPECT_TRUE(pathExists(seen.arguments[1]));
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry :
        std::filesystem::directory_iterator(m_home.path() + "/.korvane/monitor/Crash Reports"))
        ++entries;
    EXPECT_EQ(entries, 0u);
}

TEST_F(CrashInChild, AbortFromTheCLibraryNamesTheCallerBelowTheLibraryFrames)
{
    crash("install", "abort");
    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    const ProcessedDump dump = process(seen.arguments[1]);
    EXPECT_EQ(dump.crashReason, "SIGABRT");
    ASSERT_GE(dump.crashingThread, 0) << dump.stackwalk;
    const DumpThread& crashed = dump.crashing();
    ASSERT_FALSE(crashed.frames.empty());
    EXPECT_EQ(crashed.frames[0].module, "libc.so.6") << dump.stackwalk;
    std::size_t firstOwn = 0;
    while (firstOwn < crashed.frames.size() && crashed.frames[firstOwn].module != "crash_helper")
        ++firstOwn;
    ASSERT_LT(firstOwn, crashed.frames.size()) << dump.stackwalk;
    EXPECT_EQ(crashed.frames[firstOwn].function.rfind("korvaneAbortHere", 0), 0u) << dump.stackwalk;
}

// The thread overflows its stack; on the signal stack it set up the
// handler still runs, and the reporter starts.
TEST_F(CrashInChild, StackOverflowOnAThreadWithItsOwnSignalStackIsReported)
{
    const ProcessResult result = crash("install", "overflow");
    EXPECT_EQ(describe(result.status), "signal " + std::to_string(SIGSEGV));
    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    ASSERT_TRUE(pathExists(seen.arguments[1]));
    const ProcessedDump dump = process(seen.arguments[1]);
    EXPECT_EQ(dump.crashReason.rfind("SIGSEGV", 0), 0u) << dump.crashReason;
    ASSERT_GE(dump.crashingThread, 0) << dump.stackwalk;
    EXPECT_NE(dump.crashing().id, static_cast<std::uint32_t>(result.pid));
    ASSERT_FALSE(dump.crashing().frames.empty());
    EXPECT_EQ(dump.crashing().frames[0].function.rfind("korvaneRecurseHere", 0), 0u) << dump.stackwalk;
}

// Breakpad writes the dump for a breakpoint instruction too, then returns
// from its handler, and the program goes on after the instruction.
TEST_F(CrashInChild, BreakpointTrapIsReportedAndTheProgramGoesOn)
{
    const ProcessResult result = crash("install", "trap");
    EXPECT_EQ(describe(result.status), "exit 4");
    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    const ProcessedDump dump = process(seen.arguments[1]);
    EXPECT_EQ(dump.crashReason.rfind("SIGTRAP", 0), 0u) << dump.crashReason;
    ASSERT_GE(dump.crashingThread, 0) << dump.stackwalk;
    ASSERT_FALSE(dump.crashing().frames.empty());
    EXPECT_EQ(dump.crashing().frames[0].function.rfind("korvaneTrapHere", 0), 0u) << dump.stackwalk;
}

// Without that stack there is no room to handle the signal: the process
// just dies, and no reporter is started.
TEST_F(CrashInChild, StackOverflowWithoutASignalStackOfItsOwnIsNotReported)
{
#ifdef KORVANE_SANITIZED
    GTEST_SKIP() << "AddressSanitizer gives every thread a signal stack of its own";
#endif
    const ProcessResult result = crash("install", "overflow-nostack");
    EXPECT_EQ(describe(result.status), "signal " + std::to_string(SIGSEGV));
    EXPECT_FALSE(waitForFile(record(), 2000));
}
