#pragma once

#include <pthread.h>

// A plain non-recursive mutex. It also satisfies BasicLockable, so
// std::lock_guard<Mutex> works.
class Mutex
{
public:
    Mutex();
    virtual ~Mutex();

    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock();
    void unlock();
    // False only when another thread holds the mutex.
    bool tryLock();

private:
    pthread_mutex_t m_mutex;
};
