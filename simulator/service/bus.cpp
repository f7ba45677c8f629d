#include "service/bus.h"

#include <stdexcept>
#include <utility>

namespace ipodsim
{
namespace
{
// Throws GLib's message and releases the error.
void Check(GError* error, const std::string& what)
{
    if (error == nullptr) return;
    g_dbus_error_strip_remote_error(error);
    const std::string message = what + ": " + error->message;
    g_error_free(error);
    throw std::runtime_error(message);
}

std::string SessionAddress()
{
    GError* error = nullptr;
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, &error), &g_free);
    Check(error, "no session bus");
    return address.get();
}

GDBusConnection* Connect()
{
    constexpr auto kFlags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GError* error = nullptr;
    GDBusConnection* const connection =
        g_dbus_connection_new_for_address_sync(SessionAddress().c_str(), kFlags, nullptr, nullptr, &error);
    Check(error, "no session bus");
    return connection;
}

constexpr guint32 kDoNotQueue = 4;
constexpr guint32 kPrimaryOwner = 1;
}  // namespace

Bus::Bus() : m_connection(Connect()) {}

Bus::~Bus()
{
    g_signal_handlers_disconnect_by_data(Connection(), this);
    Flush();
    g_dbus_connection_close_sync(Connection(), nullptr, nullptr);
}

void Bus::Export(GDBusInterfaceSkeleton* skeleton, const char* path) const
{
    GError* error = nullptr;
    g_dbus_interface_skeleton_export(skeleton, Connection(), path, &error);
    Check(error, std::string("cannot export ") + path);
}

void Bus::Own(const char* name) const
{
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(
        Connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name, kDoNotQueue), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    Check(error, std::string("cannot own the bus name ") + name);
    guint32 outcome = 0;
    g_variant_get(reply, "(u)", &outcome);
    g_variant_unref(reply);
    if (outcome != kPrimaryOwner)
        throw std::runtime_error("another simulator or service is running on this bus: " + OwnerOf(name) + " owns " +
                                 name);
}

std::string Bus::OwnerOf(const char* name) const
{
    GVariant* const reply =
        g_dbus_connection_call_sync(Connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", "GetConnectionUnixProcessID", g_variant_new("(s)", name),
                                    G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (reply == nullptr) return "an unknown process";
    guint32 process = 0;
    g_variant_get(reply, "(u)", &process);
    g_variant_unref(reply);
    return "process " + std::to_string(process);
}

void Bus::Flush() const
{
    g_dbus_connection_flush_sync(Connection(), nullptr, nullptr);
}

void Bus::OnLost(std::function<void()> lost)
{
    m_lost = std::move(lost);
    g_signal_connect(Connection(), "closed", G_CALLBACK(Closed), this);
}

void Bus::Closed(GDBusConnection*, gboolean, GError*, gpointer self)
{
    const Bus& bus = *static_cast<Bus*>(self);
    if (bus.m_lost) bus.m_lost();
}
}  // namespace ipodsim
