#pragma once

#include <csignal>
#include <memory>

#include "minidumpwriter.h"

// In-process crash handler: on SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT or
// SIGTRAP in any thread it writes <dump directory>/<minidump id>.dmp, calls
// the minidump callback, then lets the signal end the process as it would
// have without the handler (the previous handlers are put back first).
// The minidump id is a random UUID in text form. Shaped like the usual
// in-process exception handler of crash reporting libraries, so that one
// can take its place where it exists.
class MinidumpHandler final
{
public:
    // Called before writing; returning false skips the dump.
    using FilterCallback = bool (*)(void* context);
    // Called after writing, from the signal handler: the callee must not
    // allocate or lock. Its result is passed on as the handling result.
    using MinidumpCallback
        = bool (*)(const char* dumpDirectory, const char* minidumpId, void* context, bool succeeded);

    // Only one handler is installed at a time; the newest wins.
    MinidumpHandler(const char* dumpDirectory, FilterCallback filter, MinidumpCallback callback,
        void* callbackContext, bool installHandler);
    ~MinidumpHandler();

    bool isInstalled() const { return m_installed; }
    const char* dumpDirectory() const { return m_dumpDirectory; }

    // Writes a dump for the given signal as the signal handler does, and
    // calls the callback. Returns the callback's result (or the write
    // result when there is no callback).
    bool handleSignal(int signalNumber, siginfo_t* info, void* context);

    static constexpr int SignalCount = 6;
    static const int HandledSignals[SignalCount];

private:
    MinidumpHandler(const MinidumpHandler&) = delete;
    MinidumpHandler& operator=(const MinidumpHandler&) = delete;

    bool install();
    void uninstall();
    void restorePreviousHandlers();
    void makeMinidumpId();
    static void signalHandler(int signalNumber, siginfo_t* info, void* context);

    char m_dumpDirectory[4096] = {};
    char m_minidumpId[40] = {};
    char m_dumpPath[4096 + 64] = {};
    FilterCallback m_filter;
    MinidumpCallback m_callback;
    void* m_callbackContext;
    MinidumpWriter m_writer;
    std::unique_ptr<char[]> m_alternateStack;
    stack_t m_previousStack = {};
    bool m_stackInstalled = false;
    struct sigaction m_previousActions[SignalCount] = {};
    bool m_installed = false;
};
