// Application start-up: attaching the segments and connecting to the service.
#include <chrono>
#include <cstdio>

#include "bus.h"
#include "calls.h"
#include "contest.h"
#include "protocol.h"

namespace bench
{
namespace
{
void Ignore() {}

// The names of the twenty signals as spelled by the binding.
std::vector<std::string> SignalNames()
{
    std::vector<std::string> names;
    guint count = 0;
    guint* const ids = g_signal_list_ids(com_zarn_linux_ipod_get_type(), &count);
    for (guint i = 0; i < count; ++i)
        if (g_str_has_prefix(g_signal_name(ids[i]), "on-")) names.emplace_back(g_signal_name(ids[i]));
    g_free(ids);
    return names;
}

// The same steps as in the library, without the library. The proxy is leaked, as in the library.
void BareConnect(const std::vector<std::string>& signals)
{
    GError* error = nullptr;
    ComZarnLinuxIpod* const proxy = com_zarn_linux_ipod_proxy_new_for_bus_sync(
        G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_NONE, kBusName, kObjectPath, nullptr, &error);
    Check(error);
    g_free(g_dbus_proxy_get_name_owner(G_DBUS_PROXY(proxy)));
    for (const std::string& signal : signals) g_signal_connect(proxy, signal.c_str(), G_CALLBACK(Ignore), nullptr);
}

double TimeToGetPlayer()
{
    const auto start = std::chrono::steady_clock::now();
    QBX_GetIpodPlayer();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}
}  // namespace

void CompareConnecting(int calls)
{
    IQBXIpodPlayer* const player = Player();
    const std::vector<std::string> signals = SignalNames();
    Run({"InitInstance",
         calls,
         {Timed("bare", [&signals] { BareConnect(signals); }),
          Timed("library", [player] { player->InitInstance(); })}});
}

void MeasureAttachment()
{
    const double first = TimeToGetPlayer();
    QBX_DestroyIpodPlayer();
    const double second = TimeToGetPlayer();
    std::printf(R"({"attachment": {"first": %.0f, "second": %.0f}})"
                "\n",
                first, second);
}
}  // namespace bench
