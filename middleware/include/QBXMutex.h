/// @file
/// Locks of the head unit's middleware.
#pragma once

#include <pthread.h>

/// A recursive mutex: the thread that holds it may lock it again, and unlocks it as often.
class QBXMutex
{
public:
    /// Unlocked at first.
    QBXMutex();
    ~QBXMutex();
    QBXMutex(const QBXMutex&) = delete;
    QBXMutex& operator=(const QBXMutex&) = delete;

    /// Blocks until the calling thread holds the mutex.
    void Lock();

    /// Only for the thread that holds the mutex.
    void Unlock();

private:
    pthread_mutex_t m_mutex;
};

/// The lock of a module, built when the module is loaded.
class QBXCriticalSection : public QBXMutex
{
public:
    /// Unlocked at first.
    using QBXMutex::QBXMutex;
};
