#include "support/signal_barrier.h"

#include "support/run_loop.h"

namespace test
{
namespace
{
constexpr char kMember[] = "Barrier";

void SetTrue(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*, gpointer flag)
{
    *static_cast<bool*>(flag) = true;
}

// The bus has processed the subscription once it answers a later request.
void WaitForTheBus(GDBusConnection* session)
{
    GVariant* const reply =
        g_dbus_connection_call_sync(session, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "GetId", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (reply != nullptr) g_variant_unref(reply);
}
}  // namespace

bool PassBarrier(FakeService& service)
{
    GDBusConnection* const session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    bool passed = false;
    const guint subscription = g_dbus_connection_signal_subscribe(session, nullptr, nullptr, kMember, nullptr, nullptr,
                                                                  G_DBUS_SIGNAL_FLAGS_NONE, SetTrue, &passed, nullptr);
    WaitForTheBus(session);
    service.EmitBody(kMember, nullptr);
    RunLoopUntil([&passed] { return passed; }, std::chrono::seconds(60));
    g_dbus_connection_signal_unsubscribe(session, subscription);
    g_object_unref(session);
    return passed;
}
}  // namespace test
