#include "bare_client.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "protocol.h"

namespace bench
{
namespace
{
// The requests that ipodkit sends when the service appears.
constexpr const char* kRequests[] = {"GetCurrentMediaInfo",
                                     "GetPlayingTrackIdx",
                                     "GetPlayStatus",
                                     "GetPlayPosition",
                                     "GetShuffleMode",
                                     "GetRepeatMode",
                                     "GetDeviceAmount",
                                     "GetPlayingListItemsAmount",
                                     "GetIpodName",
                                     "GetIpodAppBundleName",
                                     "GetCarplayDeviceDetectStatus",
                                     "GetCarlifeDeviceDetectStatus",
                                     "GetPlayingTrackAlbumArtwork"};

void Check(GError* error)
{
    if (error == nullptr) return;
    std::fprintf(stderr, "the bus failed: %s\n", error->message);
    std::exit(1);
}
}  // namespace

BareClient::~BareClient()
{
    g_dbus_connection_signal_unsubscribe(m_bus, m_signals);
    g_object_unref(m_bus);
}

void BareClient::Open()
{
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, OnBus, this);
}

void BareClient::OnBus(GObject*, GAsyncResult* result, gpointer data)
{
    BareClient& self = *static_cast<BareClient*>(data);
    GError* error = nullptr;
    self.m_bus = g_bus_get_finish(result, &error);
    Check(error);
    self.m_signals = g_dbus_connection_signal_subscribe(self.m_bus, kBusName, kBusName, nullptr, kObjectPath, nullptr,
                                                        G_DBUS_SIGNAL_FLAGS_NONE, OnSignal, &self, nullptr);
    g_dbus_connection_call(self.m_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "GetNameOwner", g_variant_new("(s)", kBusName), G_VARIANT_TYPE("(s)"),
                           G_DBUS_CALL_FLAGS_NONE, -1, nullptr, OnOwner, &self);
}

void BareClient::OnOwner(GObject* bus, GAsyncResult* result, gpointer self)
{
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error);
    Check(error);
    const gchar* owner = nullptr;
    g_variant_get(reply, "(&s)", &owner);
    static_cast<BareClient*>(self)->Ask(owner);
    g_variant_unref(reply);
}

void BareClient::Ask(const std::string& owner)
{
    m_expected = static_cast<int>(std::size(kRequests));
    for (const char* const method : kRequests)
        g_dbus_connection_call(m_bus, owner.c_str(), kObjectPath, kBusName, method, nullptr, nullptr,
                               G_DBUS_CALL_FLAGS_NONE, -1, nullptr, OnAnswer, this);
}

void BareClient::OnAnswer(GObject* bus, GAsyncResult* result, gpointer self)
{
    GError* error = nullptr;
    g_variant_unref(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error));
    Check(error);
    ++static_cast<BareClient*>(self)->m_answers;
}

void BareClient::OnSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant* body,
                          gpointer self)
{
    guchar status = 0;
    if (g_variant_is_of_type(body, G_VARIANT_TYPE("(y)"))) g_variant_get(body, "(y)", &status);
    ++static_cast<BareClient*>(self)->m_events;
}
}  // namespace bench
