#include <cstdio>
#include <cstring>
#include <elf.h>
#include <filesystem>
#include <regex>
#include <signal.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "crashtestsupport.h"
#include "minidumpformat.h"

using namespace CrashTest;

namespace {

struct CrashCase
{
    const char* kind;
    int signalNumber;
    bool otherThread;
};

std::string describe(int status)
{
    if (WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    if (WIFEXITED(status))
        return "exit " + std::to_string(WEXITSTATUS(status));
    return "status " + std::to_string(status);
}

// The GNU build id of an ELF file, from its note segments.
std::string buildIdOfFile(const std::string& path)
{
    const std::string file = readFile(path);
    if (file.size() < sizeof(Elf64_Ehdr))
        return {};
    Elf64_Ehdr header;
    std::memcpy(&header, file.data(), sizeof header);
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr ph;
        std::memcpy(&ph, file.data() + header.e_phoff + i * sizeof ph, sizeof ph);
        if (ph.p_type != PT_NOTE)
            continue;
        std::size_t at = ph.p_offset;
        while (at + sizeof(Elf64_Nhdr) <= ph.p_offset + ph.p_filesz) {
            Elf64_Nhdr note;
            std::memcpy(&note, file.data() + at, sizeof note);
            const std::size_t name = at + sizeof note;
            const std::size_t desc = name + ((note.n_namesz + 3) & ~3u);
            if (note.n_type == NT_GNU_BUILD_ID && std::memcmp(file.data() + name, "GNU", 4) == 0)
                return file.substr(desc, note.n_descsz);
            at = desc + ((note.n_descsz + 3) & ~3u);
        }
    }
    return {};
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
        return runProcess({CRASH_HELPER, mode, kind, m_application.path() + "/korvane-monitor"},
            {{"HOME", m_home.path()}, {"KORVANE_TEST_REPORTER_RECORD", record()},
                {"KORVANE_TEST_MEMORY_BYTES", "8589934592"}});
    }

    std::string record() const { return m_application.path() + "/record"; }

    void SetUp() override
    {
        std::filesystem::copy_file(STANDIN_REPORTER, m_application.path() + "/crashreporter");
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

    TemporaryDirectory m_home;
    TemporaryDirectory m_application;
    std::vector<std::string> m_created;
};

const std::regex dumpPathPattern(
    "^/tmp//([0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12})\\.dmp$");

} // namespace

TEST_P(CrashInChild, WritesDumpAndExtraStartsReporterAndEndsAsWithoutHandler)
{
    const CrashCase crashCase = GetParam();
    const ProcessResult baseline = crash("noinstall", crashCase.kind);
    ASSERT_FALSE(fileExists(record())) << "no handler, no reporter";
    const ProcessResult result = crash("install", crashCase.kind);
    EXPECT_EQ(describe(result.status), describe(baseline.status));

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

    const MinidumpFile dump("/tmp/" + id + ".dmp");
    ASSERT_TRUE(dump.isValid());
    EXPECT_EQ(dump.signature(), 0x504d444du);
    EXPECT_EQ(dump.version() & 0xffff, 0xa793u);
    EXPECT_EQ(dump.u32(12), 32u) << "directory right after the header";
    EXPECT_EQ(dump.streamTypes(),
        (std::vector<std::uint32_t> {Minidump::SystemInfoStream, Minidump::ThreadListStream,
            Minidump::ExceptionStream, Minidump::ModuleListStream, Minidump::MemoryListStream,
            Minidump::LinuxMapsStream, Minidump::LinuxProcStatusStream}));

    const auto [system, systemSize] = dump.stream(Minidump::SystemInfoStream);
    ASSERT_EQ(systemSize, sizeof(Minidump::SystemInfo));
    EXPECT_EQ(dump.u16(system), Minidump::ProcessorArchitectureAmd64);
    EXPECT_EQ(dump.u32(system + 20), Minidump::PlatformLinux);
    EXPECT_GE(dump.bytes()[system + 6], 1);

    const auto [exception, exceptionSize] = dump.stream(Minidump::ExceptionStream);
    ASSERT_EQ(exceptionSize, sizeof(Minidump::ExceptionStreamRecord));
    const std::uint32_t threadId = dump.u32(exception);
    EXPECT_EQ(dump.u32(exception + 8), static_cast<std::uint32_t>(crashCase.signalNumber));
    if (crashCase.otherThread)
        EXPECT_NE(threadId, static_cast<std::uint32_t>(result.pid));
    else
        EXPECT_EQ(threadId, static_cast<std::uint32_t>(result.pid));
    const std::uint32_t contextRva = dump.u32(exception + 164);
    ASSERT_EQ(dump.u32(exception + 160), sizeof(Minidump::ContextAmd64Record));
    EXPECT_EQ(dump.u32(contextRva + 0x30), Minidump::ContextFull);
    const std::uint64_t rsp = dump.u64(contextRva + 0x98);
    const std::uint64_t rip = dump.u64(contextRva + 0xf8);
    EXPECT_NE(rip, 0u);
    if (std::string(crashCase.kind) == "segv" || crashCase.otherThread) {
        EXPECT_EQ(dump.u64(exception + 24), 0x10u) << "fault address";
    }

    const auto [threads, threadsSize] = dump.stream(Minidump::ThreadListStream);
    ASSERT_EQ(threadsSize, 4 + sizeof(Minidump::Thread));
    EXPECT_EQ(dump.u32(threads), 1u);
    EXPECT_EQ(dump.u32(threads + 4), threadId);
    const std::uint64_t stackStart = dump.u64(threads + 4 + 24);
    const std::uint32_t stackSize = dump.u32(threads + 4 + 32);
    EXPECT_LE(stackStart, rsp);
    EXPECT_GT(stackStart + stackSize, rsp);
    EXPECT_EQ(dump.u32(threads + 4 + 44), contextRva);

    const auto [memory, memorySize] = dump.stream(Minidump::MemoryListStream);
    ASSERT_EQ(memorySize, 4u + 16u);
    EXPECT_EQ(dump.u64(memory + 4), stackStart);
    EXPECT_EQ(dump.u32(memory + 12), stackSize);

    // The helper itself is among the modules, with its build id.
    const std::string helperPath = std::filesystem::canonical(CRASH_HELPER).string();
    const auto [modules, modulesSize] = dump.stream(Minidump::ModuleListStream);
    const std::uint32_t moduleCount = dump.u32(modules);
    ASSERT_EQ(modulesSize, 4 + moduleCount * sizeof(Minidump::Module));
    bool found = false;
    for (std::uint32_t i = 0; i < moduleCount; ++i) {
        const std::size_t module = modules + 4 + i * sizeof(Minidump::Module);
        if (dump.string(dump.u32(module + 20)) != helperPath)
            continue;
        found = true;
        if (std::string(crashCase.kind) != "abrt") { // abort() stops inside the C library
            EXPECT_LE(dump.u64(module), rip);
            EXPECT_GT(dump.u64(module) + dump.u32(module + 8), rip);
        }
        const std::uint32_t cvSize = dump.u32(module + 76);
        const std::uint32_t cv = dump.u32(module + 80);
        EXPECT_EQ(dump.u32(cv), Minidump::CvSignatureElfBuildId);
        const std::string buildId = buildIdOfFile(helperPath);
        ASSERT_FALSE(buildId.empty());
        EXPECT_EQ(dump.bytes().substr(cv + 4, cvSize - 4), buildId);
    }
    EXPECT_TRUE(found) << helperPath << " not in the module list";

    EXPECT_NE(dump.streamBytes(Minidump::LinuxMapsStream).find(helperPath), std::string::npos);
    const std::string status = dump.streamBytes(Minidump::LinuxProcStatusStream);
    EXPECT_EQ(status.rfind("Name:", 0), 0u);
    EXPECT_NE(status.find("Pid:\t" + std::to_string(result.pid) + "\n"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(EverySignal, CrashInChild,
    ::testing::Values(CrashCase {"segv", SIGSEGV, false}, CrashCase {"bus", SIGBUS, false},
        CrashCase {"fpe", SIGFPE, false}, CrashCase {"ill", SIGILL, false},
        CrashCase {"abrt", SIGABRT, false}, CrashCase {"trap", SIGTRAP, false},
        CrashCase {"thread", SIGSEGV, true}),
    [](const ::testing::TestParamInfo<CrashCase>& info) { return std::string(info.param.kind); });

TEST_F(CrashInChild, EmptyAnnotationTextStartsReporterButWritesNoExtra)
{
    crash("empty", "segv");
    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    std::smatch match;
    ASSERT_TRUE(std::regex_match(seen.arguments[1], match, dumpPathPattern));
    EXPECT_TRUE(fileExists("/tmp/" + std::string(match[1]) + ".dmp"));
    EXPECT_FALSE(fileExists("/tmp/" + std::string(match[1]) + ".extra"));
}

TEST_F(CrashInChild, DumpsGoToTmpNotToTheDataDirectory)
{
    crash("install", "abrt");
    const ReporterRecord seen = reporterRecord();
    ASSERT_EQ(seen.arguments.size(), 2u);
    EXPECT_EQ(seen.arguments[1].rfind("/tmp//", 0), 0u);
    EXPECT_TRUE(fileExists(seen.arguments[1]));
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry :
        std::filesystem::directory_iterator(m_home.path() + "/.korvane/monitor/Crash Reports"))
        ++entries;
    EXPECT_EQ(entries, 0u);
}
