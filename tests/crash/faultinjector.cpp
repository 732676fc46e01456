// Preloaded (LD_PRELOAD) into the real monitor by its crash tests. It wraps
// recv(), poll() and ppoll() and, when KORVANE_FAULT asks for it, faults on the
// worker thread or on the main thread once the monitor has been receiving
// replies from the server for a while (its trees full, its threads all
// started), inside a function named for the fault:
//   worker           null write in korvaneWorkerFaultHere, in recv()
//   worker-overflow  endless recursion in korvaneWorkerOverflowHere, in recv()
//   gui              null write in korvaneGuiFaultHere, in poll() or ppoll()
//                    on the main thread
// The faulting thread's id goes to the file KORVANE_FAULT_RECORD first.
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::int64_t ConnectedNsBeforeFault = 3'000'000'000;

std::atomic<std::int64_t> firstReplyAt {0};
std::atomic<bool> faultDue {false};
volatile bool stopRecursion = false;

const char* mode()
{
    static const char* const fault = std::getenv("KORVANE_FAULT");
    return fault ? fault : "";
}

std::int64_t now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

void recordThread()
{
    const char* path = std::getenv("KORVANE_FAULT_RECORD");
    if (!path)
        return;
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%ld\n", static_cast<long>(syscall(SYS_gettid)));
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd >= 0) {
        if (write(fd, text, static_cast<std::size_t>(length)) < 0) { }
        close(fd);
    }
}

} // namespace

__attribute__((noinline)) void korvaneWorkerFaultHere()
{
    volatile std::uintptr_t where = 0x10;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the bad address is the point
    *reinterpret_cast<volatile int*>(where) = 1;
    asm volatile("" ::: "memory");
}

__attribute__((noinline)) void korvaneGuiFaultHere()
{
    volatile std::uintptr_t where = 0x20;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the bad address is the point
    *reinterpret_cast<volatile int*>(where) = 1;
    asm volatile("" ::: "memory");
}

__attribute__((noinline)) int korvaneWorkerOverflowHere(int depth)
{
    if (stopRecursion)
        return 0;
    volatile char page[4096];
    page[0] = static_cast<char>(depth);
    return korvaneWorkerOverflowHere(depth + 1) + page[0];
}

extern "C" ssize_t recv(int fd, void* buffer, size_t size, int flags)
{
    using Recv = ssize_t (*)(int, void*, size_t, int);
    static const Recv real = reinterpret_cast<Recv>(dlsym(RTLD_NEXT, "recv"));
    const ssize_t received = real(fd, buffer, size, flags);
    if (received > 0) {
        std::int64_t expected = 0;
        firstReplyAt.compare_exchange_strong(expected, now());
        if (now() - firstReplyAt >= ConnectedNsBeforeFault)
            faultDue = true;
    }
    if (faultDue) {
        if (std::strcmp(mode(), "worker") == 0) {
            recordThread();
            korvaneWorkerFaultHere();
        } else if (std::strcmp(mode(), "worker-overflow") == 0) {
            recordThread();
            korvaneWorkerOverflowHere(0);
        }
    }
    return received;
}

namespace {

// The main thread waits in poll() or, with newer GLib (Debian 13's 2.84), in
// ppoll().
void faultOnTheMainThreadWhenDue()
{
    if (faultDue && getpid() == syscall(SYS_gettid) && std::strcmp(mode(), "gui") == 0) {
        recordThread();
        korvaneGuiFaultHere();
    }
}

} // namespace

extern "C" int poll(struct pollfd* descriptors, nfds_t count, int timeoutMs)
{
    using Poll = int (*)(struct pollfd*, nfds_t, int);
    static const Poll real = reinterpret_cast<Poll>(dlsym(RTLD_NEXT, "poll"));
    faultOnTheMainThreadWhenDue();
    return real(descriptors, count, timeoutMs);
}

extern "C" int ppoll(struct pollfd* descriptors, nfds_t count, const timespec* timeout, const sigset_t* mask)
{
    using Ppoll = int (*)(struct pollfd*, nfds_t, const timespec*, const sigset_t*);
    static const Ppoll real = reinterpret_cast<Ppoll>(dlsym(RTLD_NEXT, "ppoll"));
    faultOnTheMainThreadWhenDue();
    return real(descriptors, count, timeout, mask);
}
