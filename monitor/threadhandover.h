#pragma once

// The worker hands its results to the user-interface thread through Qt:
// queued signals, and the end of its thread seen by QThread::wait(). Qt's
// libraries are not built with ThreadSanitizer, so it cannot see that
// synchronisation and would report every hand-over as a race. These calls
// mark the hand-over points in our own code: markHandOver() where the worker
// gives something away, takeHandOver() where the receiving side picks it up.
// Without ThreadSanitizer they compile to nothing.

#if defined(__SANITIZE_THREAD__)
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);

namespace threadhandover {
inline char key;
}

inline void markHandOver()
{
    __tsan_release(&threadhandover::key);
}

inline void takeHandOver()
{
    __tsan_acquire(&threadhandover::key);
}
#else
inline void markHandOver() { }
inline void takeHandOver() { }
#endif
