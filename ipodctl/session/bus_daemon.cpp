#include "session/bus_daemon.h"

namespace ctl
{
namespace
{
constexpr int kAnswerWithin = 10000;
}

GVariant* AskBus(GDBusConnection* bus, const char* method, GVariant* arguments)
{
    return g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                       method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, kAnswerWithin, nullptr,
                                       nullptr);
}
}  // namespace ctl
