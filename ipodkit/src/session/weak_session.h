/// @file
/// Sessions as user data of GLib's callbacks, which may come after the session's end.
#pragma once

#include "session/session_impl.h"

namespace ipodkit
{
using WeakImpl = std::weak_ptr<Session::Impl>;

/// For callbacks that come once, and for those whose data GLib deletes.
inline WeakImpl* Weakly(const std::shared_ptr<Session::Impl>& session)
{
    return new WeakImpl(session);
}

/// In a callback that comes once: null when the session has ended.
inline std::shared_ptr<Session::Impl> TakeSession(gpointer data)
{
    const std::unique_ptr<WeakImpl> weak(static_cast<WeakImpl*>(data));
    return weak->lock();
}

inline void DeleteWeak(gpointer data)
{
    delete static_cast<WeakImpl*>(data);
}

inline void DeleteWeakOfClosure(gpointer data, GClosure*)
{
    DeleteWeak(data);
}
}  // namespace ipodkit
