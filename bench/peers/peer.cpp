#include "peer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace peers
{
namespace
{
double Now(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

double Timed(const std::function<void()>& work, clockid_t clock = CLOCK_MONOTONIC)
{
    const double start = Now(clock);
    work();
    return Now(clock) - start;
}

void Require(bool fulfilled)
{
    if (fulfilled) return;
    std::fprintf(stderr, "the service sent an unexpected reply\n");
    std::exit(1);
}

// The processor time of all threads of the peer, from its sleep to the event.
double TimeEvent(Peer& peer)
{
    peer.RequestEvent();
    return Timed([&peer] { peer.AwaitEvent(); }, CLOCK_PROCESS_CPUTIME_ID);
}

double Measure(Peer& peer, const std::string& work)
{
    constexpr std::size_t kNames = 1000;
    constexpr std::size_t kImage = 900000;
    if (work == "event") return TimeEvent(peer);
    if (work == "command") return Timed([&peer] { Require(peer.Pause()); });
    if (work == "names") return Timed([&peer] { Require(peer.Names() == kNames); });
    if (work == "image") return Timed([&peer] { Require(peer.Image() == kImage); });
    std::fprintf(stderr, "unknown task '%s'\n", work.c_str());
    std::exit(2);
}

double Median(Peer& peer, const std::string& work, int count)
{
    std::vector<double> costs;
    for (int i = 0; i < count; ++i) costs.push_back(Measure(peer, work));
    std::sort(costs.begin(), costs.end());
    return costs.at(costs.size() / 2);
}
}  // namespace

int RunPeer(int argc, char** argv, const std::function<std::unique_ptr<Peer>()>& connect)
{
    const std::unique_ptr<Peer> peer = connect();
    if (argc > 1 && std::string(argv[1]) == "start") return peer->Pause() ? 0 : 1;
    std::puts("ready");
    std::fflush(stdout);
    char work[16] = {};
    for (int count = 0; std::scanf("%15s %d", work, &count) == 2;)
    {
        std::printf("figure %s %.0f\n", work, Median(*peer, work, count));
        std::fflush(stdout);
    }
    return 0;
}
}  // namespace peers
