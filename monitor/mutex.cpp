#include "mutex.h"

#include <cerrno>

Mutex::Mutex()
{
    pthread_mutex_init(&m_mutex, nullptr);
}

Mutex::~Mutex()
{
    pthread_mutex_destroy(&m_mutex);
}

void Mutex::lock()
{
    pthread_mutex_lock(&m_mutex);
}

void Mutex::unlock()
{
    pthread_mutex_unlock(&m_mutex);
}

bool Mutex::tryLock()
{
    return pthread_mutex_trylock(&m_mutex) != EBUSY;
}
