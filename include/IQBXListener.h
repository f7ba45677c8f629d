/// @file
/// The registry of listeners: a set of pointers and the lock under which events are dispatched.
///
/// The registry does not own its listeners: it never deletes them and does not notify them when it is destroyed.
///
/// **Threads.** Dispatch holds the listener lock from the first listener to the last. Registration does not acquire it:
/// to add or remove a listener on another thread than the one that runs the events, hold the lock around the call with
/// LockListener() and UnlockListener(). Inside a callback the lock is already held: do not lock it again, as the head
/// unit's mutex may not be recursive.
///
/// The order of the virtual operations is part of the published interface: append, never insert.
#pragma once

#include <QBXMutex.h>

#include <cstddef>
#include <set>

/// A registry of listeners of type @p T.
template <class T>
class IQBXListener
{
public:
    virtual ~IQBXListener() = default;

    /// Registers @p listener and calls OnListenerAdded(), even if it was already registered. A null pointer is ignored.
    virtual void AddListener(T* listener)
    {
        if (listener == nullptr) return;
        m_listeners.insert(listener);
        OnListenerAdded(listener);
    }

    /// Removes @p listener and calls OnListenerRemoved(), even if it was not registered. A null pointer is ignored.
    virtual void RemoveListener(T* listener)
    {
        if (listener == nullptr) return;
        m_listeners.erase(listener);
        OnListenerRemoved(listener);
    }

    /// Returns the set itself, not a copy, in ascending order of address. Owned by the registry.
    virtual std::set<T*>& GetListeners() { return m_listeners; }

    /// Returns the number of registered listeners. Acquires no lock.
    virtual std::size_t GetListenerCount() { return m_listeners.size(); }

    /// Holds events back until UnlockListener(); blocks while one is being dispatched.
    virtual void LockListener() { m_lock.Lock(); }

    /// Resumes the delivery of events.
    virtual void UnlockListener() { m_lock.Unlock(); }

    /// Hook for a service: AddListener() was called, the listener is registered.
    virtual void OnListenerAdded(T*) {}

    /// Hook for a service: RemoveListener() was called, the listener is not registered.
    virtual void OnListenerRemoved(T*) {}

private:
    std::set<T*> m_listeners;
    QBXMutex m_lock;
};
