// The real monitor, connected to the real simulator, crashes on its worker
// thread or on its main thread (a preloaded library makes the fault, see
// faultinjector.cpp), and Breakpad's own processor reads the dump back.
#include <csignal>
#include <filesystem>
#include <iostream>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "crashtestsupport.h"
#include "simprocess.h"
#include "tempdirectory.h"
#include "testpaths.h"

using namespace CrashTest;

namespace {

class MonitorCrash : public ::testing::Test
{
protected:
    void SetUp() override
    {
#ifdef KORVANE_SANITIZED
        // The sanitizer's runtime must be the first library of the process,
        // which the preloaded fault library does not allow; the plain build
        // runs these tests.
        GTEST_SKIP() << "preloading the fault library needs the plain build";
#endif
        ASSERT_FALSE(m_simulator.address().empty()) << "the simulator did not start";
        // The monitor looks for its reporter beside itself.
        std::filesystem::copy_file(KORVANE_MONITOR_PROGRAM, m_application.path() + "/korvane-monitor");
        std::filesystem::copy_file(KORVANE_STANDIN_REPORTER_PROGRAM, m_application.path() + "/crashreporter");
    }

    void TearDown() override
    {
        if (!m_dump.empty()) {
            std::remove(m_dump.c_str());
            std::remove((m_dump.substr(0, m_dump.size() - 4) + ".extra").c_str());
        }
    }

    // Runs the monitor connected to the simulator until the fault ends it,
    // and reads the dump the reporter was started with.
    ProcessedDump crash(const std::string& fault)
    {
        const ProcessResult result
            = runProcess({m_application.path() + "/korvane-monitor", "--connect", m_simulator.address()},
                {{"HOME", m_home.path()}, {"XDG_CONFIG_HOME", m_home.path() + "/.config"},
                    {"QT_QPA_PLATFORM", "offscreen"}, {"LD_PRELOAD", KORVANE_FAULT_INJECTOR_LIBRARY},
                    {"KORVANE_FAULT", fault}, {"KORVANE_FAULT_RECORD", faultRecord()},
                    {"KORVANE_TEST_REPORTER_RECORD", reporterRecord()}},
                60000);
        m_pid = static_cast<std::uint32_t>(result.pid);
        EXPECT_TRUE(WIFSIGNALED(result.status) && WTERMSIG(result.status) == SIGSEGV)
            << "status " << result.status;
        ProcessedDump dump = reportedDump();
        if (dump.crashingThread >= 0)
            printTopFrames(dump);
        return dump;
    }

    std::string faultRecord() const
    {
        return m_application.path() + "/fault";
    }
    std::string reporterRecord() const
    {
        return m_application.path() + "/record";
    }

    std::uint32_t faultingThread() const
    {
        return static_cast<std::uint32_t>(std::stoul(readFile(faultRecord())));
    }

    // The dump the reporter was started with, read with the symbols of
    // the build and of the system's libraries.
    ProcessedDump reportedDump()
    {
        EXPECT_TRUE(waitForFile(reporterRecord())) << "the reporter was not started";
        const ReporterRecord seen = readReporterRecord(reporterRecord());
        if (seen.arguments.size() != 2)
            return {};
        m_dump = seen.arguments[1];
        writeSystemSymbols(m_dump, KORVANE_SYSTEM_SYMBOLS_DIR);
        return processDump(m_dump, {KORVANE_SYMBOLS_DIR, KORVANE_SYSTEM_SYMBOLS_DIR});
    }

    void printTopFrames(const ProcessedDump& dump) const
    {
        std::cout << "dump of " << std::filesystem::file_size(m_dump) << " bytes, " << dump.threads.size()
                  << " threads, crash reason " << dump.crashReason << '\n';
        for (std::size_t i = 0; i < dump.crashing().frames.size() && i < 8; ++i)
            std::cout << "  " << i << "  " << dump.crashing().frames[i].module << "  "
                      << dump.crashing().frames[i].function << '\n';
    }

    static const DumpThread* threadWithId(const ProcessedDump& dump, std::uint32_t id)
    {
        for (const DumpThread& thread : dump.threads)
            if (thread.id == id)
                return &thread;
        return nullptr;
    }

    SimProcess m_simulator {{"--seed", "1"}};
    TempDirectory m_home;
    TempDirectory m_application;
    std::string m_dump;
    std::uint32_t m_pid = 0;
};

} // namespace

TEST_F(MonitorCrash, FaultOnTheWorkerThreadIsDumpedWithEveryThread)
{
    const ProcessedDump dump = crash("worker");
    ASSERT_GE(dump.crashingThread, 0) << dump.stackwalk;
    EXPECT_GE(dump.threads.size(), 3u) << dump.stackwalk;
    EXPECT_EQ(dump.crashReason, "SIGSEGV /SEGV_MAPERR");
    EXPECT_EQ(dump.crashAddress, "0x10");

    const DumpThread& crashed = dump.crashing();
    EXPECT_EQ(crashed.id, faultingThread());
    EXPECT_NE(crashed.id, m_pid);
    ASSERT_FALSE(crashed.frames.empty());
    EXPECT_EQ(crashed.frames[0].function, "korvaneWorkerFaultHere()") << dump.stackwalk;
    EXPECT_GE(crashed.frameOf("ControlClient::"), 1) << dump.stackwalk;
    EXPECT_GE(crashed.frameOf("MonitorWorker::run()"), 1) << dump.stackwalk;

    const DumpThread* gui = threadWithId(dump, m_pid);
    ASSERT_NE(gui, nullptr) << dump.stackwalk;
    EXPECT_GE(gui->frameOf("QCoreApplication::exec()"), 0) << dump.stackwalk;
    EXPECT_GE(gui->frameOf("main"), 1) << dump.stackwalk;
}

TEST_F(MonitorCrash, FaultOnTheMainThreadIsDumpedWithEveryThread)
{
    const ProcessedDump dump = crash("gui");
    ASSERT_GE(dump.crashingThread, 0) << dump.stackwalk;
    EXPECT_GE(dump.threads.size(), 3u) << dump.stackwalk;
    EXPECT_EQ(dump.crashAddress, "0x20");

    const DumpThread& crashed = dump.crashing();
    EXPECT_EQ(crashed.id, faultingThread());
    EXPECT_EQ(crashed.id, m_pid);
    ASSERT_FALSE(crashed.frames.empty());
    EXPECT_EQ(crashed.frames[0].function, "korvaneGuiFaultHere()") << dump.stackwalk;
    EXPECT_GE(crashed.frameOf("main"), 1) << dump.stackwalk;

    // The worker is in the dump too, somewhere in its run.
    bool workerFound = false;
    for (const DumpThread& thread : dump.threads)
        workerFound = workerFound || thread.frameOf("MonitorWorker::run()") >= 0;
    EXPECT_TRUE(workerFound) << dump.stackwalk;
}

TEST_F(MonitorCrash, StackOverflowOnTheWorkerThreadLeavesADumpAndStartsTheReporter)
{
    const ProcessedDump dump = crash("worker-overflow");
    ASSERT_GE(dump.crashingThread, 0) << dump.stackwalk;
    EXPECT_TRUE(pathExists(m_dump));
    EXPECT_EQ(dump.crashReason.rfind("SIGSEGV", 0), 0u);
    EXPECT_EQ(dump.crashing().id, faultingThread());
    ASSERT_FALSE(dump.crashing().frames.empty());
    EXPECT_EQ(dump.crashing().frames[0].function, "korvaneWorkerOverflowHere(int)") << dump.stackwalk;
}
