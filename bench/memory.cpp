// The memory that remains allocated after many successful calls, events, pages, and images.
#include <QBXLog.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include "bus.h"
#include "support/counted_malloc.h"

namespace
{
using namespace bench;

// Warm-up: pools of underlying libraries fill first.
constexpr int kWarmUp = 1000;

constexpr int kPageNames = 100;
constexpr int kPictureBytes = 20000;

struct CountingListener : IQBXIpodPlayerListener
{
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { ++events; }
    int events = 0;
};

long ResidentKilobytes()
{
    long total = 0;
    long resident = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld %ld", &total, &resident) != 2) std::exit(1);
    std::fclose(file);
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

void Repeat(int times, const std::function<void()>& operation)
{
    for (int i = 0; i < times; ++i) operation();
    while (g_main_context_iteration(nullptr, FALSE)) continue;
}

void Measure(const char* name, int times, const std::function<void()>& operation)
{
    Repeat(kWarmUp, operation);
    const long allocations = test::LiveAllocations();
    const long resident = ResidentKilobytes();
    Repeat(times, operation);
    std::printf(R"({"growth": "%s", "times": %d, "allocations": %ld, "kilobytes": %ld})"
                "\n",
                name, times, test::LiveAllocations() - allocations, ResidentKilobytes() - resident);
    std::fflush(stdout);
}

void Event(CountingListener& listener)
{
    GError* error = nullptr;
    com_zarn_linux_ipod_call_seek_sync(BareProxy(), FALSE, nullptr, &error);
    Check(error);
    for (const int before = listener.events; listener.events == before;) g_main_context_iteration(nullptr, TRUE);
}

void MeasureEvents(int times)
{
    CountingListener listener;
    Player()->AddListener(&listener);
    Measure("event", times, [&listener] { Event(listener); });
    Player()->RemoveListener(&listener);
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || std::atoi(argv[1]) < 1)
    {
        std::fprintf(stderr, "usage: bench_memory TIMES\n");
        return 2;
    }
    const int times = std::atoi(argv[1]);
    QBX_LogInit("ERROR:/dev/null");
    Prepare(kPageNames, kPictureBytes, false);
    std::vector<std::string> list;
    std::vector<unsigned char> payload(kPictureBytes);
    std::string name;
    Measure("call", times, [] { Player()->GetPlayStatus(); });
    Measure("record", times, [] { Player()->GetCurrentMediaInfo(); });
    Measure("page", times, [&list] { Player()->GetPlayingListItems(0, kPageNames - 1, list); });
    Measure("artwork", times, [] { Player()->GetPlayingTrackAlbumArtwork(); });
    Measure("EapWrite", times, [&payload] { Player()->EapWrite(1, payload); });
    MeasureEvents(times);
    Measure("text reader", kWarmUp, [&name] { Player()->GetIpodName(name); });
}
