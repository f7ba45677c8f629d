/// @file
/// Weak references as user data of GLib callbacks, which may run after the object was destroyed.
#pragma once

#include <glib-object.h>

#include <memory>

namespace ipodkit
{
/// For a callback that runs once, or one whose data GLib deletes with DeleteWeak().
template <class T>
std::weak_ptr<T>* Weakly(const std::shared_ptr<T>& object)
{
    return new std::weak_ptr<T>(object);
}

/// For use in a callback that runs once. Returns null if the object was destroyed.
template <class T>
std::shared_ptr<T> TakeWeak(gpointer data)
{
    const std::unique_ptr<std::weak_ptr<T>> weak(static_cast<std::weak_ptr<T>*>(data));
    return weak->lock();
}

/// For use in a callback that runs repeatedly. Returns null if the object was destroyed.
template <class T>
std::shared_ptr<T> LockWeak(gpointer data)
{
    return static_cast<std::weak_ptr<T>*>(data)->lock();
}

template <class T>
void DeleteWeak(gpointer data)
{
    delete static_cast<std::weak_ptr<T>*>(data);
}
}  // namespace ipodkit
