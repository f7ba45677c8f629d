// Growth of ipodkit: index and search of names, browsing a list, accessory sessions, and bursts of events.
#include <IQBXIpodPlayer.h>
#include <QBXLog.h>
#include <ipodkit/accessory.h>
#include <ipodkit/pager.h>
#include <ipodkit/testing.h>
#include <ipodnames/jump_index.h>

#include <cstdio>
#include <cstdlib>
#include <map>

#include "bus.h"
#include "growth.h"
#include "protocol.h"
#include "samples.h"

namespace
{
using namespace bench;
using ipodnames::JumpIndex;

const std::vector<int> kNameSizes{100, 300, 1000, 3000, 10000, 30000, 100000};

void Nothing(int) {}

std::map<int, std::vector<std::string>> Lists(const std::vector<int>& sizes)
{
    std::map<int, std::vector<std::string>> lists;
    for (const int size : sizes) lists[size] = SampleNames(static_cast<std::size_t>(size));
    return lists;
}

void RunIndex(int rounds)
{
    const auto lists = Lists(kNameSizes);
    RunGrowth("names to index", rounds, kNameSizes, Nothing,
              [&lists](int size) { const JumpIndex index(lists.at(size)); });
}

void RunSearch(int rounds)
{
    std::map<int, JumpIndex> indices;
    for (const auto& [size, names] : Lists(kNameSizes)) indices.emplace(size, names);
    RunGrowth("names to search", rounds, kNameSizes, Nothing,
              [&indices](int size) { (void)indices.at(size).Search("abc"); });
}

void Walk(ipodkit::FakeSession& fake, ipodkit::Pager& pager, int size)
{
    constexpr int kPage = 50;
    pager.Refresh();
    for (int index = 0; index < size; index += kPage)
    {
        bool arrived = false;
        pager.At(index).Start([&arrived](const ipodkit::Result<ipodkit::PagePtr>& page)
                              { arrived = page.has_value(); });
        fake.Run();
        if (!arrived) std::abort();
    }
}

void RunBrowsing(int rounds)
{
    const auto lists = Lists(kNameSizes);
    ipodkit::FakeSession fake;
    ipodkit::Pager pager(fake.Get(), ipodkit::ListKind::Playing);
    RunGrowth(
        "names to browse", rounds, kNameSizes,
        [&](int size) { fake.SetList(ipodkit::ListKind::Playing, lists.at(size)); },
        [&](int size) { Walk(fake, pager, size); });
}

// Each of the open sessions receives one packet.
void RunAccessories(int rounds)
{
    ipodkit::FakeSession fake;
    ipodkit::AccessoryPort port(fake.Get());
    std::uint16_t open = 0;
    const auto prepare = [&](int size)
    {
        for (; open > 0; --open) fake.Emit(ipodkit::AccessoryClosed{open});
        for (; open < size; ++open) fake.Emit(ipodkit::AccessoryOpened{0, static_cast<std::uint16_t>(open + 1)});
        fake.Run();
        if (port.Sessions().size() != static_cast<std::size_t>(size)) std::abort();
    };
    RunGrowth("accessory sessions", rounds, {1, 2, 4, 8, 16, 32, 64}, prepare,
              [&](int size)
              {
                  for (int i = 1; i <= size; ++i)
                      fake.Emit(ipodkit::AccessoryData{static_cast<std::uint16_t>(i), std::vector<unsigned char>(256)});
                  fake.Run();
              });
}

struct CountingListener : IQBXIpodPlayerListener
{
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { ++events; }
    int events = 0;
};

// The service emits as fast as it can.
void RunBursts(int rounds)
{
    CountingListener listener;
    Player()->AddListener(&listener);
    RunGrowth("events of a burst", rounds, {1000, 3000, 10000, 30000}, Nothing,
              [&listener](int size)
              {
                  listener.events = 0;
                  g_dbus_connection_call(Bus(), kBusName, kBenchPath, kBenchInterface, "Emit",
                                         g_variant_new("(i)", size), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                                         nullptr, nullptr);
                  while (listener.events < size) g_main_context_iteration(nullptr, TRUE);
              });
    Player()->RemoveListener(&listener);
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || std::atoi(argv[1]) < 1)
    {
        std::fprintf(stderr, "usage: bench_growth_kit ROUNDS [CONTEST...]\n");
        return 2;
    }
    QBX_LogInit("ERROR:/dev/null");
    RunOnly({argv + 2, argv + argc});
    const int rounds = std::atoi(argv[1]);
    RunIndex(rounds);
    RunSearch(rounds);
    RunBrowsing(rounds);
    RunAccessories(rounds);
    RunBursts(rounds);
}
