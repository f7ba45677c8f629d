/// @file
/// The core's one player, as far as sessions need it.
#pragma once

#include <IQBXIpodPlayer.h>
#include <ipodkit/error.h>

#include <functional>
#include <optional>

#include "loop/glib_ptr.h"

namespace ipodkit
{
/// What this process remembers of the core from one session to the next. All but Claim() and Release() on the context
/// thread.
class CoreLink
{
public:
    static CoreLink& Instance();

    /// Makes the caller the one session of the process; an error when there is one, or when the player delivers its
    /// events in another context.
    std::optional<Error> Claim(GMainContext* context);
    void Release();

    /// Whether Attach() has succeeded in this process.
    bool Attached() const { return m_player != nullptr; }

    /// Null until Attach() has succeeded.
    IQBXIpodPlayer* Player() const { return m_player; }

    /// Obtains the player. The caller has probed the segments.
    std::optional<Error> Attach();

    /// Whether InitInstance() has succeeded in this process.
    bool Connected() const { return m_connected; }

    /// Calls InitInstance(), in the context's name. Once it returned true, never again.
    bool Connect();

    /// Registration under the listener lock, as an event may be on its way.
    void Add(IQBXIpodPlayerListener* listener);
    void Remove(IQBXIpodPlayerListener* listener);

private:
    GMainContext* m_context = nullptr;  // of the player's events; kept for the life of the process
    IQBXIpodPlayer* m_player = nullptr;
    std::optional<Error> m_failure;
    bool m_claimed = false;
    bool m_connected = false;
};
}  // namespace ipodkit
