#include "faults/signal_faults.h"

#include "faults/falsify.h"

namespace ipodsim
{
namespace
{
using Kept = std::shared_ptr<Faults>;

bool IsSignalOfService(GDBusMessage* message)
{
    return g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_SIGNAL &&
           g_strcmp0(g_dbus_message_get_interface(message), "com.zarn.linux.ipod") == 0;
}

GDBusMessage* Falsified(GDBusMessage* message, const Fault& fault)
{
    GDBusMessage* const copy = g_dbus_message_copy(message, nullptr);
    g_object_unref(message);
    GVariant* const body = g_dbus_message_get_body(copy);
    if (body != nullptr) g_dbus_message_set_body(copy, Falsify(body, fault));
    return copy;
}

// On GDBus' own thread. Takes the message over, and drops it by returning none.
GDBusMessage* OnMessage(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer faults)
{
    if (incoming != FALSE || !IsSignalOfService(message)) return message;
    const auto fault = (*static_cast<Kept*>(faults))->Take(g_dbus_message_get_member(message));
    if (!fault) return message;
    if (fault->kind != FaultKind::NoReply) return Falsified(message, *fault);
    g_object_unref(message);
    return nullptr;
}
}  // namespace

void FalsifySignals(GDBusConnection* connection, const std::shared_ptr<Faults>& faults)
{
    // They stay as long as the connection, which GDBus' thread holds while it filters. A function that gives up the
    // filter's data would be left to the main context, which may be gone by then.
    auto* const kept = new Kept(faults);
    g_object_set_data_full(G_OBJECT(connection), "ipodsim-faults", kept,
                           [](gpointer data) { delete static_cast<Kept*>(data); });
    g_dbus_connection_add_filter(connection, OnMessage, kept, nullptr);
}
}  // namespace ipodsim
