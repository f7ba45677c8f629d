/// @file
/// Dispatch of an event to the registered listeners.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <IQBXListener.h>

namespace qbx
{
using ListenerRegistry = IQBXListener<IQBXIpodPlayerListener>;

/// Holds the listener lock; lets go of it also when a listener throws.
class ListenerLock
{
public:
    explicit ListenerLock(ListenerRegistry& registry) : m_registry(registry) { m_registry.LockListener(); }
    ~ListenerLock() { m_registry.UnlockListener(); }
    ListenerLock(const ListenerLock&) = delete;
    ListenerLock& operator=(const ListenerLock&) = delete;

private:
    ListenerRegistry& m_registry;
};

/// Calls @p event of every listener, in ascending order of address. The caller holds the listener lock.
/// The set is searched again after each call, because a listener may remove itself or others.
template <class... Params, class... Args>
void Dispatch(ListenerRegistry& registry, void (IQBXIpodPlayerListener::*event)(Params...), Args&... args)
{
    auto& listeners = registry.GetListeners();
    for (auto next = listeners.begin(); next != listeners.end();)
    {
        IQBXIpodPlayerListener* const listener = *next;
        (listener->*event)(args...);
        next = listeners.upper_bound(listener);
    }
}

/// Locks, dispatches, unlocks. What @p event takes by value is copied afresh for each listener.
template <class... Params, class... Args>
void Notify(ListenerRegistry& registry, void (IQBXIpodPlayerListener::*event)(Params...), Args&... args)
{
    const ListenerLock lock(registry);
    Dispatch(registry, event, args...);
}
}  // namespace qbx
