// Crashes on purpose, for the crash tests:
//   crash_helper install|noinstall|empty KIND APPLICATION_PATH
// install: crash reporting set up as main() does, the reporter being
// <directory of APPLICATION_PATH>/crashreporter; empty: the same with no
// annotations; noinstall: no handler, to compare how the process ends.
// KIND: segv, bus, fpe, ill, abrt, trap, thread.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

#include "crashreporter.h"

namespace {

std::uint64_t memoryFromEnvironment()
{
    const char* text = std::getenv("KORVANE_TEST_MEMORY_BYTES");
    return text ? std::strtoull(text, nullptr, 10) : 0;
}

void crash(const char* kind);

} // namespace

// Named so that a debugger's backtrace can be checked for it.
__attribute__((noinline)) void korvaneFaultHere(int value)
{
    volatile std::uintptr_t where = 0x10;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a write to an unmapped address is the point
    *reinterpret_cast<volatile int*>(where) = value;
    asm volatile("" ::: "memory");
}

namespace {

__attribute__((noinline)) void busError()
{
    // Touching a page past the end of a mapped empty file.
    const int fd = memfd_create("korvane-crash-test", 0);
    auto* page = static_cast<volatile char*>(mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
    page[0] = 1;
}

void crash(const char* kind)
{
    if (std::strcmp(kind, "segv") == 0) {
        korvaneFaultHere(1);
    } else if (std::strcmp(kind, "bus") == 0) {
        busError();
    } else if (std::strcmp(kind, "fpe") == 0) {
        int dividend = 1;
        int divisor = 0;
        asm volatile("cltd\n\tidivl %1" : "+a"(dividend) : "r"(divisor) : "rdx");
    } else if (std::strcmp(kind, "ill") == 0) {
        asm volatile("ud2");
    } else if (std::strcmp(kind, "abrt") == 0) {
        std::abort();
    } else if (std::strcmp(kind, "trap") == 0) {
        asm volatile("int3");
    } else if (std::strcmp(kind, "thread") == 0) {
        std::thread worker([] { korvaneFaultHere(2); });
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
