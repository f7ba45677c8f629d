// The generated GDBus proxy, without a library on top.
#include <ipod_dbus.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "peer.h"
#include "protocol.h"

namespace
{
using namespace peers;

void Check(GError* error)
{
    if (error == nullptr) return;
    std::fprintf(stderr, "the bus failed: %s\n", error->message);
    std::exit(1);
}

class GdbusPeer : public Peer
{
public:
    GdbusPeer()
    {
        GError* error = nullptr;
        m_proxy = com_zarn_linux_ipod_proxy_new_for_bus_sync(G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_NONE,
                                                             bench::kBusName, bench::kObjectPath, nullptr, &error);
        Check(error);
        g_signal_connect(m_proxy, "on-play-status-changed", G_CALLBACK(OnEvent), this);
    }
    ~GdbusPeer() override { g_object_unref(m_proxy); }

    bool Pause() override
    {
        GError* error = nullptr;
        gboolean paused = FALSE;
        com_zarn_linux_ipod_call_pause_sync(m_proxy, &paused, nullptr, &error);
        Check(error);
        return paused != FALSE;
    }

    void RequestEvent() override
    {
        GError* error = nullptr;
        com_zarn_linux_ipod_call_seek_sync(m_proxy, 0, nullptr, &error);
        Check(error);
    }

    void AwaitEvent() override
    {
        for (const int before = m_events; m_events == before;) g_main_context_iteration(nullptr, TRUE);
    }

    std::size_t Names() override
    {
        GVariant* const reply = Fetch("Names");
        GVariantIter* iterator = nullptr;
        g_variant_get(reply, "(as)", &iterator);
        std::vector<std::string> names;
        const gchar* name = nullptr;
        while (g_variant_iter_next(iterator, "&s", &name)) names.emplace_back(name);
        g_variant_iter_free(iterator);
        g_variant_unref(reply);
        return names.size();
    }

    std::size_t Image() override
    {
        GVariant* const reply = Fetch("Bytes");
        GVariant* inner = nullptr;
        g_variant_get(reply, "(v)", &inner);
        gsize count = 0;
        const auto* const begin = static_cast<const unsigned char*>(g_variant_get_fixed_array(inner, &count, 1));
        const std::vector<unsigned char> image(begin, begin + count);
        g_variant_unref(inner);
        g_variant_unref(reply);
        return image.size();
    }

private:
    static void OnEvent(ComZarnLinuxIpod*, guchar, gpointer self) { ++static_cast<GdbusPeer*>(self)->m_events; }

    GVariant* Fetch(const char* method)
    {
        GError* error = nullptr;
        GVariant* const reply = g_dbus_connection_call_sync(
            g_dbus_proxy_get_connection(G_DBUS_PROXY(m_proxy)), bench::kBusName, bench::kBenchPath,
            bench::kBenchInterface, method, nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
        Check(error);
        return reply;
    }

    ComZarnLinuxIpod* m_proxy = nullptr;
    int m_events = 0;
};
}  // namespace

int main(int argc, char** argv)
{
    return RunPeer(argc, argv, [] { return std::make_unique<GdbusPeer>(); });
}
