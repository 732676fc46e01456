#pragma once

#include <csignal>
#include <cstddef>
#include <memory>

// Gives the calling thread a signal stack of its own for as long as the
// object lives. A thread that overflows its stack gets SIGSEGV with no room
// left to run a handler on; with this stack the crash handler still runs,
// writes the dump and starts the reporter. The crash handler sets one up
// for the thread that installs it; every other thread that should survive
// an overflow long enough to be reported needs its own.
//
// Create and destroy it on the same thread: signal stacks are per thread.
class AlternateSignalStack final
{
public:
    AlternateSignalStack();
    ~AlternateSignalStack();

    bool isInstalled() const { return m_installed; }
    static std::size_t size();

private:
    AlternateSignalStack(const AlternateSignalStack&) = delete;
    AlternateSignalStack& operator=(const AlternateSignalStack&) = delete;

    std::unique_ptr<char[]> m_stack;
    stack_t m_previous = {};
    bool m_installed = false;
};
