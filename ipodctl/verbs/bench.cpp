// How long the commands of the library take.
#include <chrono>
#include <cstdio>

#include "output/table.h"
#include "output/text.h"
#include "verbs/latency.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
using Names = std::vector<std::string>;

struct Command
{
    const char* name;
    bool isPage;  ///< fills a vector that other applications read too
    void (*call)(IQBXIpodPlayer& player);
};

template <int (IQBXIpodPlayer::*page)(int, int, Names&, int&, int&)>
void ReadPage(IQBXIpodPlayer& player)
{
    Names names;
    int folder = 0;
    int root = 0;
    (player.*page)(0, 0, names, folder, root);
}

// Those that change nothing, in the order of the interface.
const std::vector<Command>& Commands()
{
    using Player = IQBXIpodPlayer;
    static const std::vector<Command> commands = {
        {"GetCurrentMediaInfo", false, [](Player& player) { player.GetCurrentMediaInfo(); }},
        {"GetPlayPosition", false,
         [](Player& player)
         {
             int position = 0;
             int length = 0;
             player.GetPlayPosition(position, length);
         }},
        {"GetPlayStatus", false, [](Player& player) { player.GetPlayStatus(); }},
        {"GetShuffleMode", false, [](Player& player) { player.GetShuffleMode(); }},
        {"GetRepeatMode", false, [](Player& player) { player.GetRepeatMode(); }},
        {"GetPlayingTrackIdx", false, [](Player& player) { player.GetPlayingTrackIdx(); }},
        {"GetPlayingListItemsAmount", false, [](Player& player) { player.GetPlayingListItemsAmount(); }},
        {"GetCurDBListItemsAmount", false, [](Player& player) { player.GetCurDBListItemsAmount(0); }},
        {"IsiPodInDBRoot", false, [](Player& player) { player.IsiPodInDBRoot(); }},
        {"GetDeviceAmount", false, [](Player& player) { player.GetDeviceAmount(); }},
        {"GetCarplayDeviceDetectStatus", false,
         [](Player& player)
         {
             auto status = APPLE_DEVICE_NOT_DETECTED;
             std::string serial;
             player.GetCarplayDeviceDetectStatus(status, serial);
         }},
        {"GetCarlifeDeviceDetectStatus", false, [](Player& player) { player.GetCarlifeDeviceDetectStatus(); }},
        {"GetPlayingTrackAlbumArtwork", true, [](Player& player) { player.GetPlayingTrackAlbumArtwork(); }},
        {"GetCurDBListItems", true, ReadPage<&IQBXIpodPlayer::GetCurDBListItems>},
        {"GetCurDBListItemsPinyin", true, ReadPage<&IQBXIpodPlayer::GetCurDBListItemsPinyin>},
        {"GetDeviceList", true,
         [](Player& player)
         {
             Names names;
             player.GetDeviceList(names);
         }},
    };
    return commands;
}

struct Request
{
    int count = 200;
    bool pages = false;
};

double Microseconds(std::chrono::steady_clock::duration duration)
{
    return std::chrono::duration<double, std::micro>(duration).count();
}

// A failed call ends the run: its time would say nothing.
Latency Measure(Session& session, const Command& command, int count)
{
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        times.push_back(session.Ask(
            [&command](IQBXIpodPlayer& player)
            {
                const auto begin = std::chrono::steady_clock::now();
                command.call(player);
                return Microseconds(std::chrono::steady_clock::now() - begin);
            }));
    return Summarise(times);
}

std::string Number(double microseconds)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%10.1f", microseconds);
    return text;
}

std::string Introduction(const Request& request)
{
    return Count(request.count, "call", "calls") + " of each command that changes nothing" +
           (request.pages ? ", and of those that fill the shared vectors" : "") + "; microseconds";
}

Answer Bench(Context& context, const Request& request)
{
    Json json{{"verb", "bench"}, {"calls", request.count}, {"commands", Json::array()}};
    std::vector<std::vector<std::string>> rows{{"command", "     least", "       p50", "       p99", "      most"}};
    for (const Command& command : Commands())
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
    app.add_option("--count", request->count, "Calls of each command")->capture_default_str()->check(WholeNumber(1));
    app.add_flag("--pages", request->pages,
                 "Also measure commands that fill the shared vectors, which other applications may be reading");
    return [request](Context& context) { return Bench(context, *request); };
}
}  // namespace

std::vector<Verb> BenchVerbs()
{
    return {{"bench", "Measure the commands that change nothing",
             "ipodctl bench\nipodctl bench --count 1000 --pages\n"
             "ipodctl bench --json | jq '.commands[] | {name, p99_us}'",
             BuildBench}};
}
}  // namespace ctl
