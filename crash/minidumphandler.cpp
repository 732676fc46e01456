#include "minidumphandler.h"

#include <atomic>
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

const int MinidumpHandler::HandledSignals[SignalCount] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP};

namespace {

std::atomic<MinidumpHandler*> currentHandler {nullptr};
std::atomic<int> handling {0};

constexpr std::size_t AlternateStackSize = std::size_t {64} * 1024;

void appendText(char* buffer, std::size_t capacity, const char* text)
{
    std::size_t length = std::strlen(buffer);
    while (*text && length + 1 < capacity)
        buffer[length++] = *text++;
    buffer[length] = '\0';
}

void formatUuid(const unsigned char bytes[16], char* out)
{
    static const char hex[] = "0123456789abcdef";
    std::size_t at = 0;
    for (int i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            out[at++] = '-';
        out[at++] = hex[bytes[i] >> 4];
        out[at++] = hex[bytes[i] & 0xf];
    }
    out[at] = '\0';
}

} // namespace

MinidumpHandler::MinidumpHandler(const char* dumpDirectory, FilterCallback filter, MinidumpCallback callback,
    void* callbackContext, bool installHandler)
    : m_filter(filter)
    , m_callback(callback)
    , m_callbackContext(callbackContext)
{
    appendText(m_dumpDirectory, sizeof m_dumpDirectory, dumpDirectory ? dumpDirectory : "");
    makeMinidumpId();
    if (installHandler)
        m_installed = install();
}

MinidumpHandler::~MinidumpHandler()
{
    uninstall();
}

void MinidumpHandler::makeMinidumpId()
{
    // A version 4 UUID from the kernel's generator; this runs at install
    // time and again at crash time (getrandom is a plain system call).
    unsigned char bytes[16] = {};
    long got = syscall(SYS_getrandom, bytes, sizeof bytes, 0x1 /* GRND_NONBLOCK */);
    if (got != static_cast<long>(sizeof bytes)) {
        // Keep the previous id, or make one from time and process id.
        if (m_minidumpId[0])
            return;
        struct timespec now = {};
        syscall(SYS_clock_gettime, CLOCK_REALTIME, &now);
        std::uint64_t seed = static_cast<std::uint64_t>(now.tv_nsec)
            ^ (static_cast<std::uint64_t>(now.tv_sec) << 20) ^ static_cast<std::uint64_t>(getpid());
        for (unsigned char& b : bytes) {
            seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
            b = static_cast<unsigned char>(seed >> 56);
        }
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80);
    formatUuid(bytes, m_minidumpId);
}

bool MinidumpHandler::install()
{
    // The alternate stack lets a stack overflow on this thread be reported.
    m_alternateStack.reset(new char[AlternateStackSize]);
    std::memset(m_alternateStack.get(), 0, AlternateStackSize);
    stack_t stack = {};
    stack.ss_sp = m_alternateStack.get();
    stack.ss_size = AlternateStackSize;
    if (sigaltstack(&stack, &m_previousStack) == 0)
        m_stackInstalled = true;

    struct sigaction action = {};
    action.sa_sigaction = &MinidumpHandler::signalHandler;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int signalNumber : HandledSignals)
        sigaddset(&action.sa_mask, signalNumber);

    currentHandler.store(this);
    for (int i = 0; i < SignalCount; ++i) {
        if (sigaction(HandledSignals[i], &action, &m_previousActions[i]) != 0) {
            for (int k = 0; k < i; ++k)
                sigaction(HandledSignals[k], &m_previousActions[k], nullptr);
            currentHandler.store(nullptr);
            return false;
        }
    }
    return true;
}

void MinidumpHandler::restorePreviousHandlers()
{
    for (int i = 0; i < SignalCount; ++i)
        sigaction(HandledSignals[i], &m_previousActions[i], nullptr);
}

void MinidumpHandler::uninstall()
{
    if (m_installed) {
        MinidumpHandler* self = this;
        if (currentHandler.compare_exchange_strong(self, nullptr))
            restorePreviousHandlers();
        m_installed = false;
    }
    if (m_stackInstalled) {
        // Put the previous stack back only if ours is still the current one.
        stack_t current = {};
        if (sigaltstack(nullptr, &current) == 0 && current.ss_sp == m_alternateStack.get()
            && !(current.ss_flags & SS_ONSTACK)) {
            if (m_previousStack.ss_sp == nullptr)
                m_previousStack.ss_flags = SS_DISABLE;
            sigaltstack(&m_previousStack, nullptr);
        }
        m_stackInstalled = false;
    }
}

bool MinidumpHandler::handleSignal(int signalNumber, siginfo_t* info, void* context)
{
    if (m_filter && !m_filter(m_callbackContext))
        return false;
    makeMinidumpId();
    m_dumpPath[0] = '\0';
    appendText(m_dumpPath, sizeof m_dumpPath, m_dumpDirectory);
    appendText(m_dumpPath, sizeof m_dumpPath, "/");
    appendText(m_dumpPath, sizeof m_dumpPath, m_minidumpId);
    appendText(m_dumpPath, sizeof m_dumpPath, ".dmp");

    siginfo_t fallback = {};
    if (!info) {
        fallback.si_signo = signalNumber;
        info = &fallback;
    }
    const bool written = m_writer.write(m_dumpPath, info, static_cast<const ucontext_t*>(context));
    if (m_callback)
        return m_callback(m_dumpDirectory, m_minidumpId, m_callbackContext, written);
    return written;
}

void MinidumpHandler::signalHandler(int signalNumber, siginfo_t* info, void* context)
{
    int expected = 0;
    if (!handling.compare_exchange_strong(expected, 1)) {
        // Another thread is writing its dump and will end the process.
        for (;;)
            pause();
    }

    MinidumpHandler* handler = currentHandler.load();
    if (handler) {
        handler->handleSignal(signalNumber, info, context);
        handler->restorePreviousHandlers();
    } else {
        signal(signalNumber, SIG_DFL);
    }

    // A processor fault happens again when the handler returns and reaches
    // the previous handler with its own details. Anything sent, and the
    // traps that do not repeat, is raised once more on this thread; it is
    // blocked until the handler returns.
    const bool repeats = info && info->si_code > 0 && info->si_code != SI_KERNEL && signalNumber != SIGABRT
        && signalNumber != SIGTRAP;
    if (!repeats) {
        if (syscall(SYS_tgkill, getpid(), syscall(SYS_gettid), signalNumber) != 0)
            _exit(1);
    }
    handling.store(0);
}
