// The smallest media player that "playerctl status" can query.
#include <gio/gio.h>

#include <cstdio>

namespace
{
constexpr char kXml[] = R"(<node><interface name="org.mpris.MediaPlayer2.Player">
    <property name="PlaybackStatus" type="s" access="read"/></interface></node>)";

GVariant* Read(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GError**, gpointer)
{
    return g_variant_new_string("Playing");
}

void OnBus(GDBusConnection* bus, const gchar*, gpointer)
{
    static const GDBusInterfaceVTable table = {nullptr, Read, nullptr, {}};
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(kXml, nullptr);
    g_dbus_connection_register_object(bus, "/org/mpris/MediaPlayer2", node->interfaces[0], &table, nullptr, nullptr,
                                      nullptr);
}

void OnName(GDBusConnection*, const gchar*, gpointer)
{
    std::puts("ready");
    std::fflush(stdout);
}
}  // namespace

int main()
{
    g_bus_own_name(G_BUS_TYPE_SESSION, "org.mpris.MediaPlayer2.bench", G_BUS_NAME_OWNER_FLAGS_NONE, OnBus, OnName,
                   nullptr, nullptr, nullptr);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
