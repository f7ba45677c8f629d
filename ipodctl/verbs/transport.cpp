// Starting, stopping, and moving within and between tracks.
#include <glib.h>

#include <algorithm>

#include "output/text.h"
#include "player/level.h"
#include "player/playing.h"
#include "player/source.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr std::chrono::seconds kReportedWithin(2);

void Resume(Session& session)
{
    TakeAudioSource(session);
    AskOfTrack(session, session.Commands().StartPlayback(ipodkit::PlayOption::Start),
               "the service did not start playback; ipodctl status shows what it does");
}

void PlayEntry(Session& session, const std::string& wanted)
{
    const Entry entry = FindEntry(session, wanted);
    if (ReadLevel(session, entry.index, 1, Pinyin::None).folder)
        throw Failure(kNothingDone, "'" + Printable(entry.name) + "' is a folder; enter it with ipodctl cd " +
                                        std::to_string(entry.index));
    TakeAudioSource(session);
    session.Ask(session.Commands().PlayDatabaseEntry(entry.index));
}

Run BuildPlay(CLI::App& app)
{
    const auto entry = Argument<std::optional<std::string>>();
    app.add_option(
        "entry", *entry,
        "Index or name of a song of the current level; without it, resume playback. ./NAME is a name even if it looks "
        "like an index");
    return [entry](Context& context)
    {
        if (*entry)
            PlayEntry(context.session, **entry);
        else
            Resume(context.session);
        return ToAnswer(ReadPlaying(context.session), "play");
    };
}

// One call, and a word for its refusal.
template <ipodkit::Request<void> (ipodkit::Commands::*command)() const>
Run BuildSimple(const char* verb, const char* refusal)
{
    return [verb, refusal](Context& context)
    {
        AskOfTrack(context.session, (context.session.Commands().*command)(), refusal);
        return ToAnswer(ReadPlaying(context.session), verb);
    };
}

Run BuildPause(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Pause>("pause",
                                                  "the service did not pause; ipodctl status shows what it does");
}

Run BuildStop(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Stop>("stop", "the service did not stop; ipodctl status shows what it does");
}

Run BuildNext(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Next>(
        "next", "the service did not move on; ipodctl queue shows whether this is the last entry");
}

Run BuildPrevious(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Previous>(
        "previous", "the service did not move back; ipodctl queue shows whether this is the first entry");
}

// Relative targets stop at the ends of the track; an absolute one behind its end is a mistake.
int SecondFor(const SeekTarget& target, const Playing& playing)
{
    const auto length = playing.at.duration;
    const int last = std::max(0, static_cast<int>(length.count() / 1000));
    if (target.relative)
        return std::clamp(static_cast<int>(playing.at.position.count() / 1000) + target.seconds, 0, last);
    if (length.count() > 0 && target.seconds > last)
        throw Failure(kUsage, "the track is only " + Clock(length) + " long");
    return target.seconds;
}

// The service reports where it is now by an event. One that does not is shown by what it reported before.
Answer Seek(Session& session, const SeekTarget& target)
{
    ipodkit::Session& kit = session.Ready();
    const int second = SecondFor(target, RequireTrack(*kit.State()));
    session.Ask(kit.Commands().Seek(std::chrono::seconds(second)));
    session.Await(kit.Changed(ipodkit::Field::Position).Within(kReportedWithin));
    Answer answer = ToAnswer(PlayingIn(*kit.State()), "seek");
    answer.text +=
        " at " + Clock(answer.json["position_ms"].get<int>()) + " / " + Clock(answer.json["length_ms"].get<int>());
    return answer;
}

constexpr char kTimes[] = "give SECONDS, MM:SS, +N or -N";

Run BuildSeek(CLI::App& app)
{
    const auto target = Argument<std::string>();
    const auto back = Argument<std::string>();
    auto* const time =
        app.add_option("time", *target, "SECONDS, MM:SS, or H:MM:SS from the start; +N or -N seconds from here");
    app.add_option("--back", *back, "Same as -N")->excludes(time);
    return [target, back](Context& context)
    {
        if (target->empty() && back->empty()) throw Failure(kUsage, "missing argument: time", kTimes);
        const std::string text = back->empty() ? *target : "-" + *back;
        const std::optional<SeekTarget> parsed = ParseSeek(text);
        const std::string& given = back->empty() || g_ascii_isdigit(back->front()) ? text : *back;
        if (!parsed) throw Failure(kUsage, "'" + Printable(given) + "' is not a valid time", kTimes);
        return Seek(context.session, *parsed);
    };
}
}  // namespace

std::vector<Verb> TransportVerbs()
{
    return {{"play", "Resume playback, or play a song of the current level",
             "ipodctl play\nipodctl cd /Songs && ipodctl play 3\nipodctl play \"Blue in Green\"", BuildPlay},
            {"pause", "Pause playback", "ipodctl pause", BuildPause},
            {"stop", "Stop playback", "ipodctl stop", BuildStop},
            {"next", "Skip to the next track (exit code 1 at the end)", "ipodctl next", BuildNext},
            {"previous", "Skip to the previous track (exit code 1 at the start)", "ipodctl previous", BuildPrevious},
            {"seek", "Move within the playing track",
             "ipodctl seek 90\nipodctl seek 1:30\nipodctl seek +10\nipodctl seek -10", BuildSeek}};
}
}  // namespace ctl
