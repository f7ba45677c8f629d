// What plays, on one screen; and all that is known of the track.
#include <algorithm>

#include "names.h"
#include "playing.h"
#include "table.h"
#include "text.h"
#include "track.h"
#include "verbs.h"

namespace ctl
{
namespace
{
constexpr int kWidestBar = 42;
constexpr int kTimesWidth = 20;

struct Status
{
    Playing playing;
    int shuffle;
    int repeat;
    int devices;
};

Status ReadStatus(Session& session)
{
    return {ReadPlaying(session), session.Ask([](IQBXIpodPlayer& player) { return player.GetShuffleMode(); }),
            session.Ask([](IQBXIpodPlayer& player) { return player.GetRepeatMode(); }),
            session.Ask([](IQBXIpodPlayer& player) { return player.GetDeviceAmount(); })};
}

Json StatusJson(const Status& status)
{
    Json json{{"verb", "status"}};
    json.update(PlayingJson(status.playing));
    json["shuffle"] = ShuffleName(status.shuffle);
    json["repeat"] = RepeatName(status.repeat);
    json["devices"] = std::max(0, status.devices);
    return json;
}

std::string TrackText(const QBXiPodTrackInfo& track, const Output& out)
{
    const std::string artist = Printable(track.text2);
    const std::string album = Printable(track.text3);
    const std::string title = track.text1.empty() ? "(no title)" : Printable(track.text1);
    const std::string below = artist + (artist.empty() || album.empty() ? "" : " - ") + album;
    return out.Paint(Colour::Bold, Cut(title, out.width())) + "\n" +
           (below.empty() ? "" : Cut(below, out.width()) + "\n");
}

std::string ProgressText(const Playing& playing, const Output& out)
{
    const int width = std::clamp(out.width() - kTimesWidth, 4, kWidestBar);
    return out.Paint(Colour::Cyan, Bar(playing.position, playing.length, width)) + " " + Clock(playing.position) +
           " / " + Clock(playing.length) + "\n";
}

std::string QueueText(const Playing& playing)
{
    if (playing.index < 0) return "queue " + Count(std::max(0, playing.amount), "entry", "entries");
    return "queue " + std::to_string(playing.index + 1) + " of " + std::to_string(playing.amount);
}

std::string StatusText(const Status& status, const Output& out)
{
    const Playing& playing = status.playing;
    const std::string track =
        IsEmpty(playing.track) ? std::string() : TrackText(playing.track, out) + ProgressText(playing, out);
    return track + out.Paint(Colour::Green, PlayStatusName(playing.state)) + "   shuffle " +
           ShuffleName(status.shuffle) + "   repeat " + RepeatName(status.repeat) + "   " + QueueText(playing) + "   " +
           Count(std::max(0, status.devices), "device", "devices");
}

Run BuildStatus(CLI::App&)
{
    return [](Context& context) -> Answer
    {
        const Status status = ReadStatus(context.session);
        return {StatusJson(status), StatusText(status, context.out)};
    };
}

std::string InfoText(const Playing& playing, int width)
{
    const QBXiPodTrackInfo& track = playing.track;
    return Table({{"title", Printable(track.text1)},
                  {"artist", Printable(track.text2)},
                  {"album", Printable(track.text3)},
                  {"genre", Printable(track.text4)},
                  {"length", Clock(track.value1)},
                  {"number", track.value2 > 0 ? std::to_string(track.value2) : "unknown"},
                  {"queue", std::to_string(playing.index + 1) + " of " + std::to_string(playing.amount)},
                  {"picture", track.value4 == 1 ? "yes" : "no"}},
                 width);
}

Run BuildInfo(CLI::App&)
{
    return [](Context& context) -> Answer
    {
        const Playing playing = RequireTrack(context.session);
        Json json{{"verb", "info"}};
        json.update(PlayingJson(playing));
        return {json, InfoText(playing, context.out.width())};
    };
}
}  // namespace

std::vector<Verb> StatusVerbs()
{
    return {{"status", "Show what plays, the modes, the queue and the devices",
             "ipodctl status\nipodctl status --json | jq -r .track.title", BuildStatus},
            {"info", "Show all details of the playing track", "ipodctl info\nipodctl info --json", BuildInfo}};
}
}  // namespace ctl
