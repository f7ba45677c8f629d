/// @file
/// Locks of the head unit's middleware.
#pragma once

#include <pthread.h>

/// A mutex. This stand-in is recursive: the thread that holds it may lock it again, and must unlock it as often. The
/// head unit's may not be recursive.
class QBXMutex
{
public:
    /// Builds an unlocked mutex.
    QBXMutex();
    ~QBXMutex();
    QBXMutex(const QBXMutex&) = delete;
    QBXMutex& operator=(const QBXMutex&) = delete;

    /// Blocks until the calling thread holds the mutex.
    void Lock();

    /// Releases the mutex. Only the thread that holds it may call it.
    void Unlock();

private:
    pthread_mutex_t m_mutex;
};

/// Lock of a module, constructed when the module is loaded.
class QBXCriticalSection : public QBXMutex
{
public:
    /// Builds an unlocked mutex.
    using QBXMutex::QBXMutex;
};
