#include "root.h"

#include <mpris_info.h>

namespace companion
{
// DesktopEntry has no value, because the daemon installs no desktop file.
Root::Root(GDBusConnection* connection)
    : BusObject(connection, kMprisPath, const_cast<GDBusInterfaceInfo*>(&org_mpris_media_player2_interface))
{
    const Value no = Owned(g_variant_new_boolean(FALSE));
    const Value none = Owned(g_variant_new_strv(nullptr, 0));
    Publish({{"CanQuit", no},
             {"Fullscreen", no},
             {"CanSetFullscreen", no},
             {"CanRaise", no},
             {"HasTrackList", no},
             {"Identity", Owned(g_variant_new_string("iPod"))},
             {"SupportedUriSchemes", none},
             {"SupportedMimeTypes", none}});
}

// Raise and Quit have no effect: CanRaise and CanQuit are false.
void Root::Call(const std::string&, GVariant*, GDBusMethodInvocation* invocation)
{
    g_dbus_method_invocation_return_value(invocation, nullptr);
}
}  // namespace companion
