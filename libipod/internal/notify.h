/// @file
/// Dispatch of an event to the registered listeners.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <IQBXListener.h>

#include <cstddef>
#include <iterator>

namespace qbx
{
/// Counts removals from the client's registry. Only changes are meaningful.
inline unsigned listenersRemoved = 0;

using ListenerRegistry = IQBXListener<IQBXIpodPlayerListener>;

/// Holds the listener lock; releases it even if a listener throws.
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

/// Two equal states mean that no listener was removed in between, so that a position in the set is still valid. The
/// size alone does not suffice: a listener may replace itself with another one.
struct RegistryState
{
    std::size_t size;
    unsigned removals;

    bool SameAs(const RegistryState& other) const { return size == other.size && removals == other.removals; }
};

/// Calls @p event of every listener, in ascending order of address. The caller holds the listener lock.
/// If a listener removes itself or others, the next one is searched in the set.
template <class... Params, class... Args>
void Dispatch(ListenerRegistry& registry, void (IQBXIpodPlayerListener::*event)(Params...), Args&... args)
{
    auto& listeners = registry.GetListeners();
    const auto state = [&listeners] { return RegistryState{listeners.size(), listenersRemoved}; };
    for (auto next = listeners.begin(); next != listeners.end();)
    {
        IQBXIpodPlayerListener* const listener = *next;
        const RegistryState before = state();
        (listener->*event)(args...);
        next = state().SameAs(before) ? std::next(next) : listeners.upper_bound(listener);
    }
}

/// Locks, dispatches, unlocks. Arguments that @p event receives by value are copied for each listener.
template <class... Params, class... Args>
void Notify(ListenerRegistry& registry, void (IQBXIpodPlayerListener::*event)(Params...), Args&... args)
{
    const ListenerLock lock(registry);
    Dispatch(registry, event, args...);
}
}  // namespace qbx
