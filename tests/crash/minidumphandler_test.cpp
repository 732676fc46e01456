#include <regex>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "crashtestsupport.h"
#include "minidumpformat.h"
#include "minidumphandler.h"

using namespace CrashTest;

namespace {

struct CallbackRecord
{
    int calls = 0;
    std::string dumpDirectory;
    std::string minidumpId;
    void* context = nullptr;
    bool succeeded = false;
    bool result = true;
};

bool recordCallback(const char* dumpDirectory, const char* minidumpId, void* context, bool succeeded)
{
    auto* record = static_cast<CallbackRecord*>(context);
    ++record->calls;
    record->dumpDirectory = dumpDirectory;
    record->minidumpId = minidumpId;
    record->context = context;
    record->succeeded = succeeded;
    return record->result;
}

bool refuse(void*)
{
    return false;
}

// A fault as the kernel would describe it, with this thread's registers.
bool handleFakeFault(MinidumpHandler& handler)
{
    ucontext_t context;
    getcontext(&context);
    siginfo_t info = {};
    info.si_signo = SIGSEGV;
    info.si_code = SEGV_MAPERR;
    info.si_addr = reinterpret_cast<void*>(0x1234);
    return handler.handleSignal(SIGSEGV, &info, &context);
}

} // namespace

TEST(MinidumpHandler, CallbackGetsDirectoryIdContextAndSuccess)
{
    TemporaryDirectory dumps;
    CallbackRecord record;
    MinidumpHandler handler(dumps.path().c_str(), nullptr, &recordCallback, &record, false);
    EXPECT_FALSE(handler.isInstalled());
    EXPECT_TRUE(handleFakeFault(handler));
    ASSERT_EQ(record.calls, 1);
    EXPECT_EQ(record.dumpDirectory, dumps.path());
    EXPECT_EQ(record.context, &record);
    EXPECT_TRUE(record.succeeded);
    EXPECT_TRUE(std::regex_match(record.minidumpId,
        std::regex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}")));

    const MinidumpFile dump(dumps.path() + "/" + record.minidumpId + ".dmp");
    ASSERT_TRUE(dump.isValid());
    EXPECT_EQ(dump.signature(), Minidump::Signature);
    const auto [exception, size] = dump.stream(Minidump::ExceptionStream);
    ASSERT_EQ(size, sizeof(Minidump::ExceptionStreamRecord));
    EXPECT_EQ(dump.u32(exception), static_cast<std::uint32_t>(syscall(SYS_gettid)));
    EXPECT_EQ(dump.u32(exception + 8), static_cast<std::uint32_t>(SIGSEGV));
    EXPECT_EQ(dump.u32(exception + 12), static_cast<std::uint32_t>(SEGV_MAPERR));
    EXPECT_EQ(dump.u64(exception + 24), 0x1234u);
}

TEST(MinidumpHandler, EveryDumpGetsANewId)
{
    TemporaryDirectory dumps;
    CallbackRecord record;
    MinidumpHandler handler(dumps.path().c_str(), nullptr, &recordCallback, &record, false);
    handleFakeFault(handler);
    const std::string first = record.minidumpId;
    handleFakeFault(handler);
    EXPECT_NE(record.minidumpId, first);
    EXPECT_TRUE(fileExists(dumps.path() + "/" + first + ".dmp"));
    EXPECT_TRUE(fileExists(dumps.path() + "/" + record.minidumpId + ".dmp"));
}

TEST(MinidumpHandler, CallbackResultIsPassedOn)
{
    TemporaryDirectory dumps;
    CallbackRecord record;
    record.result = false;
    MinidumpHandler handler(dumps.path().c_str(), nullptr, &recordCallback, &record, false);
    EXPECT_FALSE(handleFakeFault(handler));
    EXPECT_TRUE(record.succeeded);
}

TEST(MinidumpHandler, UnwritableDirectoryIsReportedAsFailure)
{
    TemporaryDirectory dumps;
    CallbackRecord record;
    const std::string missing = dumps.path() + "/missing";
    MinidumpHandler handler(missing.c_str(), nullptr, &recordCallback, &record, false);
    handleFakeFault(handler);
    ASSERT_EQ(record.calls, 1);
    EXPECT_FALSE(record.succeeded);
}

TEST(MinidumpHandler, FilterCanSkipTheDump)
{
    TemporaryDirectory dumps;
    CallbackRecord record;
    MinidumpHandler handler(dumps.path().c_str(), &refuse, &recordCallback, &record, false);
    EXPECT_FALSE(handleFakeFault(handler));
    EXPECT_EQ(record.calls, 0);
}

TEST(MinidumpHandler, InstallingTakesTheSignalsAndDestroyingGivesThemBack)
{
    struct sigaction before = {};
    sigaction(SIGBUS, nullptr, &before);
    {
        MinidumpHandler handler("/tmp", nullptr, nullptr, nullptr, true);
        EXPECT_TRUE(handler.isInstalled());
        for (int signalNumber : MinidumpHandler::HandledSignals) {
            struct sigaction now = {};
            sigaction(signalNumber, nullptr, &now);
            EXPECT_TRUE(now.sa_flags & SA_ONSTACK) << signalNumber;
            EXPECT_TRUE(now.sa_flags & SA_SIGINFO) << signalNumber;
        }
        stack_t stack = {};
        sigaltstack(nullptr, &stack);
        EXPECT_NE(stack.ss_sp, nullptr);
    }
    struct sigaction after = {};
    sigaction(SIGBUS, nullptr, &after);
    EXPECT_EQ(after.sa_sigaction, before.sa_sigaction);
    EXPECT_EQ(after.sa_flags & SA_ONSTACK, before.sa_flags & SA_ONSTACK);
}
