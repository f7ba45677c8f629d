/// @file
/// The callbacks through which GLib delivers the service's signals. Each one converts the signal's arguments to the
/// types of the public interface and calls the client's operation for the event.
#pragma once

#include <ipod_dbus.h>

#include <utility>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/module_state.h"

namespace qbx
{
/// Calls @p operation of @p client, each argument converted to the type of the public interface; does nothing if the
/// client was destroyed. GLib ignores the result.
template <class... Params, class... Args>
gboolean Deliver(ComZarnLinuxIpod* proxy, gpointer client, void (QBXIpod_MediaPlayer_Client::*operation)(Params...),
                 Args&&... args)
{
    if (SubscriberIsGone(proxy)) return FALSE;
    (static_cast<QBXIpod_MediaPlayer_Client*>(client)->*operation)(static_cast<Params>(std::forward<Args>(args))...);
    return TRUE;
}

/// The type of a callback, derived from the signal's member of the generated interface structure.
template <class Member>
struct CallbackFor;

template <class... Args>
struct CallbackFor<void (*)(ComZarnLinuxIpod*, Args...)>
{
    using Type = gboolean (*)(ComZarnLinuxIpod*, Args..., gpointer);

    /// For signals whose arguments are plain integers: they are passed on unchanged.
    template <auto Operation>
    static gboolean Forward(ComZarnLinuxIpod* proxy, Args... args, gpointer client)
    {
        return Deliver(proxy, client, Operation, args...);
    }
};

// The other signals, each beside the operation that it calls.
gboolean CallBack_OnCarplayDeviceDetectStatusChange(ComZarnLinuxIpod*, guchar status, const gchar* serialNumber,
                                                    gpointer client);
gboolean CallBack_OnIpodAPPBundleNameChange(ComZarnLinuxIpod*, const gchar* bundleName, gpointer client);
gboolean CallBack_OnIpodArtworkChange(ComZarnLinuxIpod*, GVariant* artwork, gpointer client);
gboolean CallBack_OnIpodPhoneCallChange(ComZarnLinuxIpod*, GVariant* value, gpointer client);
gboolean CallBack_OnIpodBatteryChange(ComZarnLinuxIpod*, GVariant* value, gpointer client);
gboolean CallBack_OnIpodPlayingTrackChange(ComZarnLinuxIpod*, gint index, GVariant* trackInfo, gpointer client);
gboolean CallBack_OnIpodReceiveEapData(ComZarnLinuxIpod*, guchar session, gpointer client);
gboolean CallBack_OnWirelessCarPlayUpdate(ComZarnLinuxIpod*, gboolean available, const gchar* deviceAddress,
                                          gpointer client);
gboolean CallBack_OnOOBPairingInfo(ComZarnLinuxIpod*, const gchar* btAddress, GVariant* bytes, gpointer client);
}  // namespace qbx
