#include "alternatesignalstack.h"

#include <algorithm>
#include <unistd.h>

std::size_t AlternateSignalStack::size()
{
    // The crash handler's frames, more of them in a sanitizer build, must
    // fit; the system's own minimum may be larger on some processors.
    const long minimum = sysconf(_SC_SIGSTKSZ);
    return std::max<std::size_t>(std::size_t {64} * 1024, minimum > 0 ? static_cast<std::size_t>(minimum) : 0);
}

AlternateSignalStack::AlternateSignalStack()
    : m_stack(new char[size()])
{
    stack_t stack = {};
    stack.ss_sp = m_stack.get();
    stack.ss_size = size();
    m_installed = sigaltstack(&stack, &m_previous) == 0;
}

AlternateSignalStack::~AlternateSignalStack()
{
    if (!m_installed)
        return;
    // Put back what was there, unless someone else has replaced ours since.
    stack_t current = {};
    if (sigaltstack(nullptr, &current) == 0 && current.ss_sp == m_stack.get()) {
        if (m_previous.ss_flags & SS_ONSTACK)
            m_previous.ss_flags &= ~SS_ONSTACK;
        if (sigaltstack(&m_previous, nullptr) != 0) {
            stack_t none = {};
            none.ss_flags = SS_DISABLE;
            sigaltstack(&none, nullptr);
        }
    }
}
