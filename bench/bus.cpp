#include "bus.h"

#include <cstdio>
#include <cstdlib>

#include "protocol.h"

namespace bench
{
namespace
{
GVariant* CallBench(const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(Bus(), kBusName, kBenchPath, kBenchInterface, method, arguments,
                                                        nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    Check(error);
    return reply;
}

IQBXIpodPlayer* ConnectedPlayer()
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    if (player->InitInstance()) return player;
    std::fprintf(stderr, "the bench service is not on the bus\n");
    std::exit(1);
}
}  // namespace

void Check(GError* error)
{
    if (error == nullptr) return;
    std::fprintf(stderr, "the bus failed: %s\n", error->message);
    std::exit(1);
}

GDBusConnection* Bus()
{
    GError* error = nullptr;
    static GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    Check(error);
    return bus;
}

ComZarnLinuxIpod* BareProxy()
{
    GError* error = nullptr;
    static ComZarnLinuxIpod* const proxy = com_zarn_linux_ipod_proxy_new_sync(
        Bus(), G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS, kBusName, kObjectPath, nullptr, &error);
    Check(error);
    return proxy;
}

IQBXIpodPlayer* Player()
{
    static IQBXIpodPlayer* const player = ConnectedPlayer();
    return player;
}

void Prepare(int names, int bytes, bool fillsEachTime)
{
    g_variant_unref(CallBench("Prepare", g_variant_new("(iib)", names, bytes, fillsEachTime)));
}

std::vector<std::string> NamesOverTheBus()
{
    GVariant* const reply = CallBench("Names", nullptr);
    GVariantIter* names = nullptr;
    g_variant_get(reply, "(as)", &names);
    std::vector<std::string> list;
    const gchar* name = nullptr;
    while (g_variant_iter_next(names, "&s", &name)) list.emplace_back(name);
    g_variant_iter_free(names);
    g_variant_unref(reply);
    return list;
}

std::vector<unsigned char> BytesOverTheBus()
{
    GVariant* const reply = CallBench("Bytes", nullptr);
    GVariant* inner = nullptr;
    g_variant_get(reply, "(v)", &inner);
    gsize count = 0;
    const auto* const begin = static_cast<const unsigned char*>(g_variant_get_fixed_array(inner, &count, 1));
    std::vector<unsigned char> bytes(begin, begin + count);
    g_variant_unref(inner);
    g_variant_unref(reply);
    return bytes;
}

void SendOverTheBus(const std::vector<unsigned char>& bytes)
{
    GVariant* const array = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
    g_variant_unref(CallBench("Take", g_variant_new("(@ay)", array)));
}
}  // namespace bench
