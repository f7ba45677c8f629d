// Measures the latency of ipodkit requests, each of which is one command of the service.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "output/text.h"
#include "player/lists.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
// All members are in microseconds.
struct Latency
{
    double least;
    double median;
    double p99;  // 99th percentile
    double most;
};

// Returns the nearest-rank percentile.
double Percentile(const std::vector<double>& sorted, double share)
{
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

struct Command
{
    const char* name;
    bool isPage;  ///< fills a shared-memory vector that other applications also read
    void (*call)(Session& session);
};

template <auto request>
void SendRequest(Session& session)
{
    session.Ask((session.Commands().*request)());
}

// Reads the list size, then the first entry.
template <ipodkit::ListKind kind>
void ReadPage(Session& session)
{
    List(session, kind, 1).Names(0, 1, "the service did not deliver the list");
}

// The read-only commands, in the order of the interface.
constexpr Command kCommands[] = {
    {"GetCurrentMediaInfo", false, SendRequest<&ipodkit::Commands::CurrentTrack>},
    {"GetPlayPosition", false, SendRequest<&ipodkit::Commands::Position>},
    {"GetPlayStatus", false, SendRequest<&ipodkit::Commands::PlayStatus>},
    {"GetShuffleMode", false, SendRequest<&ipodkit::Commands::Shuffle>},
    {"GetRepeatMode", false, SendRequest<&ipodkit::Commands::Repeat>},
    {"GetPlayingTrackIdx", false, SendRequest<&ipodkit::Commands::PlayingIndex>},
    {"GetPlayingListItemsAmount", false, SendRequest<&ipodkit::Commands::PlayingCount>},
    {"GetCurDBListItemsAmount", false, [](Session& session) { session.Ask(session.Commands().DatabaseCount()); }},
    {"IsiPodInDBRoot", false, SendRequest<&ipodkit::Commands::AtRoot>},
    {"GetDeviceAmount", false, SendRequest<&ipodkit::Commands::DeviceCount>},
    {"GetCarplayDeviceDetectStatus", false, SendRequest<&ipodkit::Commands::CarPlayStatus>},
    {"GetCarlifeDeviceDetectStatus", false, SendRequest<&ipodkit::Commands::CarLifeStatus>},
    {"GetPlayingTrackAlbumArtwork", true, SendRequest<&ipodkit::Commands::Artwork>},
    {"GetCurDBListItemsAmount, GetCurDBListItems", true, ReadPage<ipodkit::ListKind::Database>},
    {"GetCurDBListItemsAmount, GetCurDBListItemsPinyin", true, ReadPage<ipodkit::ListKind::DatabasePinyin>},
    {"GetDeviceAmount, GetDeviceList", true, ReadPage<ipodkit::ListKind::Devices>},
};

struct Request
{
    int count = 200;
    bool pages = false;
};

// Throws on the first failed call: its duration would distort the result.
Latency Measure(Session& session, const Command& command, int count)
{
    std::vector<double> times(static_cast<std::size_t>(count));
    for (double& time : times)
    {
        const auto begin = std::chrono::steady_clock::now();
        command.call(session);
        time = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
    }
    std::sort(times.begin(), times.end());
    return {times.front(), Percentile(times, 0.5), Percentile(times, 0.99), times.back()};
}

std::string Number(double microseconds)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%10.1f", microseconds);
    return text;
}

std::string Introduction(const Request& request)
{
    return Count(request.count, "call", "calls") + " of each read-only command" +
           (request.pages ? ", and of those that fill the shared vectors" : "") + "; microseconds";
}

Answer Bench(Context& context, const Request& request)
{
    Json json{{"verb", "bench"}, {"calls", request.count}, {"commands", Json::array()}};
    std::vector<std::vector<std::string>> rows{{"command", "       min", "       p50", "       p99", "       max"}};
    context.session.Ready();
    for (const Command& command : kCommands)
    {
        if (command.isPage && !request.pages) continue;
        const Latency latency = Measure(context.session, command, request.count);
        json["commands"].push_back({{"name", command.name},
                                    {"least_us", latency.least},
                                    {"p50_us", latency.median},
                                    {"p99_us", latency.p99},
                                    {"most_us", latency.most}});
        rows.push_back(
            {command.name, Number(latency.least), Number(latency.median), Number(latency.p99), Number(latency.most)});
    }
    return {json, Introduction(request) + "\n" + Table(rows, context.out.width())};
}

Run BuildBench(CLI::App& app)
{
    const auto request = Argument<Request>();
    app.add_option("--count", request->count, "Number of calls per command")
        ->capture_default_str()
        ->transform(WholeNumber(1));
    app.add_flag("--pages", request->pages,
                 "Also measure commands that fill the shared vectors, which other applications may be reading");
    return [request](Context& context) { return Bench(context, *request); };
}
}  // namespace

std::vector<Verb> BenchVerbs()
{
    return {{"bench", "Measure the latency of read-only commands",
             "ipodctl bench\nipodctl bench --count 1000 --pages\n"
             "ipodctl bench --json | jq '.commands[] | {name, p99_us}'",
             BuildBench}};
}
}  // namespace ctl
