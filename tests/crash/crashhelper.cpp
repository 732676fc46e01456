// Crashes on purpose, for the crash tests:
//   crash_helper install|noinstall|empty KIND APPLICATION_PATH
// install: crash reporting set up as main() does, the reporter being
// <directory of APPLICATION_PATH>/crashreporter; empty: the same with no
// annotations; noinstall: no handler, to compare how the process ends.
// KIND: segv, bus, fpe, ill, abrt, abort, trap, thread, overflow,
// overflow-nostack. Every fault happens inside a function of its own name
// (korvane...Here), so that a stack walk can be checked for it.
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include "alternatesignalstack.h"
#include "crashreporter.h"

#define KORVANE_CRASH_FUNCTION __attribute__((noinline))

KORVANE_CRASH_FUNCTION void korvaneFaultHere(int value)
{
    volatile std::uintptr_t where = 0x10;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a write to an unmapped address is the point
    *reinterpret_cast<volatile int*>(where) = value;
    asm volatile("" ::: "memory");
}

// Touching a page past the end of a mapped empty file.
KORVANE_CRASH_FUNCTION void korvaneBusErrorHere()
{
    const int fd = memfd_create("korvane-crash-test", 0);
    auto* page = static_cast<volatile char*>(mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
    page[0] = 1;
    asm volatile("" ::: "memory");
}

KORVANE_CRASH_FUNCTION void korvaneDivideByZeroHere()
{
    int dividend = 1;
    int divisor = 0;
    asm volatile("cltd\n\tidivl %1" : "+a"(dividend) : "r"(divisor) : "rdx");
    asm volatile("" ::: "memory");
}

KORVANE_CRASH_FUNCTION void korvaneIllegalInstructionHere()
{
    asm volatile("ud2");
}

// SIGABRT raised by this very function, so that it is frame 0.
KORVANE_CRASH_FUNCTION void korvaneAbortSignalHere()
{
    long result;
    const long pid = getpid();
    const long tid = syscall(SYS_gettid);
    asm volatile("syscall"
                 : "=a"(result)
                 : "a"(SYS_tgkill), "D"(pid), "S"(tid), "d"(SIGABRT)
                 : "rcx", "r11", "memory");
    asm volatile("" ::: "memory");
}

// The usual way: abort() from the C library, which raises the signal.
KORVANE_CRASH_FUNCTION void korvaneAbortHere()
{
    std::abort();
}

KORVANE_CRASH_FUNCTION void korvaneTrapHere()
{
    asm volatile("int3");
    asm volatile("nop" ::: "memory");
}

volatile bool stopRecursion = false;

// Each level keeps a page alive, so the stack runs out quickly and no
// compiler can turn the recursion into a loop.
KORVANE_CRASH_FUNCTION int korvaneRecurseHere(int depth)
{
    if (stopRecursion)
        return 0;
    volatile char page[4096];
    page[0] = static_cast<char>(depth);
    return korvaneRecurseHere(depth + 1) + page[0];
}

namespace {

std::uint64_t memoryFromEnvironment()
{
    const char* text = std::getenv("KORVANE_TEST_MEMORY_BYTES");
    return text ? std::strtoull(text, nullptr, 10) : 0;
}

void crash(const std::string& kind)
{
    if (kind == "segv") {
        korvaneFaultHere(1);
    } else if (kind == "bus") {
        korvaneBusErrorHere();
    } else if (kind == "fpe") {
        korvaneDivideByZeroHere();
    } else if (kind == "ill") {
        korvaneIllegalInstructionHere();
    } else if (kind == "abrt") {
        korvaneAbortSignalHere();
    } else if (kind == "abort") {
        korvaneAbortHere();
    } else if (kind == "trap") {
        korvaneTrapHere();
    } else if (kind == "thread") {
        std::thread worker([] { korvaneFaultHere(2); });
        worker.join();
    } else if (kind == "overflow") {
        std::thread worker([] {
            const AlternateSignalStack signalStack;
            korvaneRecurseHere(0);
        });
        worker.join();
    } else if (kind == "overflow-nostack") {
        std::thread worker([] { korvaneRecurseHere(0); });
        worker.join();
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4)
        return 2;
    // No core files from these crashes.
    const struct rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);

    const std::string mode = argv[1];
    CrashReporter guard;
    if (mode != "noinstall") {
        if (memoryFromEnvironment())
            CrashReporter::setMemorySizeFunction(&memoryFromEnvironment);
        CrashReporter::setVendor("Korvane");
        CrashReporter::setProductName("Monitor");
        CrashReporter::setVersion(0, 1, 0, 2834);
        CrashReporter::setServerUrl("https://crash-reports.korvane.com/submit");
        CrashReporter::setApplicationPath(argv[3]);
        if (!CrashReporter::install())
            return 3;
        if (mode == "empty")
            CrashReporter::clearAnnotations();
    }
    crash(argv[2]);
    return 4;
}
