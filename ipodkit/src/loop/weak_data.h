/// @file
/// Objects as user data of GLib's callbacks, which may come after the object's end.
#pragma once

#include <glib-object.h>

#include <memory>

namespace ipodkit
{
/// For a callback that comes once, and for one whose data GLib deletes with DeleteWeak().
template <class T>
std::weak_ptr<T>* Weakly(const std::shared_ptr<T>& object)
{
    return new std::weak_ptr<T>(object);
}

/// In a callback that comes once: null when the object has ended.
template <class T>
std::shared_ptr<T> TakeWeak(gpointer data)
{
    const std::unique_ptr<std::weak_ptr<T>> weak(static_cast<std::weak_ptr<T>*>(data));
    return weak->lock();
}

/// In a callback that comes again: null when the object has ended.
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
