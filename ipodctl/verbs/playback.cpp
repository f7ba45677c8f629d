// Controls playback: start, stop, seek, skip, modes, and the playing list.
#include <glib.h>

#include <algorithm>
#include <climits>
#include <iterator>

#include "output/text.h"
#include "player/lists.h"
#include "player/player.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr std::chrono::seconds kReportedWithin(2);
constexpr char kNotPaused[] = "the service did not pause";
constexpr char kCheckStatus[] = "check the player with 'ipodctl status'";

void Resume(Session& session)
{
    TakeAudioSource(session);
    AskOfTrack(session, session.Commands().StartPlayback(ipodkit::PlayOption::Start),
               {"the service did not start playback", kCheckStatus});
}

void PlayEntry(Session& session, const std::string& wanted)
{
    const Entry entry = FindEntry(session, wanted);
    if (ReadLevel(session, entry.index, 1, Pinyin::None).folder)
        throw Failure(kNothingDone, "'" + Printable(entry.name) + "' is a folder",
                      "enter it with 'ipodctl cd " + std::to_string(entry.index) + "'");
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
        return AnswerWithPlaying(context, "play");
    };
}

// Builds a verb that sends one command. @p refusal is the message if the service answers false.
template <ipodkit::Request<void> (ipodkit::Commands::*command)() const>
Run BuildSimple(const char* verb, const Refusal& refusal)
{
    return [verb, refusal](Context& context)
    {
        AskOfTrack(context.session, (context.session.Commands().*command)(), refusal);
        return AnswerWithPlaying(context, verb);
    };
}

Run BuildPause(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Pause>("pause", {kNotPaused, kCheckStatus});
}

Run BuildStop(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Stop>("stop", {"the service did not stop", kCheckStatus});
}

Run BuildNext(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Next>("next", {"the service did not skip to the next track",
                                                          "check with 'ipodctl queue' whether this is the last entry"});
}

Run BuildPrevious(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Previous>("previous",
                                                     {"the service did not return to the previous track",
                                                      "check with 'ipodctl queue' whether this is the first entry"});
}

Run BuildToggle(CLI::App&)
{
    return [](Context& context)
    {
        const auto status = context.session.Ready().State()->status.value_or(ipodkit::PlayStatus::Stopped);
        const bool silent = status == ipodkit::PlayStatus::Stopped || status == ipodkit::PlayStatus::Paused;
        if (silent)
            Resume(context.session);
        else
            AskOfTrack(context.session, context.session.Commands().Pause(), {kNotPaused, kCheckStatus});
        return AnswerWithPlaying(context, "toggle");
    };
}

std::string PositionText(const ipodkit::PlayPosition& at)
{
    return " at " + Clock(at.position) + " / " + Clock(at.duration);
}

// Winds for a while. Winding that was interrupted is stopped, too.
template <ipodkit::Request<void> (ipodkit::Commands::*wind)() const>
Run BuildWind(CLI::App& app)
{
    const auto seconds = Argument<double>(1);
    app.add_option("seconds", *seconds, "How long to fast-forward or rewind")
        ->capture_default_str()
        ->check(Seconds(3600));
    return [seconds, verb = app.get_name()](Context& context)
    {
        const ipodkit::Commands commands = context.session.Commands();
        Loop loop;
        AskOfTrack(context.session, (commands.*wind)(), "the service did not start fast-forwarding or rewinding");
        const Ending ending = loop.Run(*seconds);
        context.session.Ask(commands.StopWinding(), "the service did not stop fast-forwarding or rewinding");
        if (ending == Ending::Interrupted) throw Interrupted{};
        Answer answer = AnswerWithPlaying(context, verb.c_str());
        if (!context.out.json()) answer.text += PositionText(context.session.Ask(commands.Position()));
        return answer;
    };
}

// Clamps relative targets to the track; rejects an absolute target past its end.
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

// The service reports the new position with an event. Without one, the answer shows the last reported position.
Answer Seek(Session& session, const SeekTarget& target)
{
    ipodkit::Session& kit = session.Ready();
    const int second = SecondFor(target, RequireTrack(*kit.State()));
    session.Ask(kit.Commands().Seek(std::chrono::seconds(second)));
    session.Await(kit.Changed(ipodkit::Field::Position).Within(kReportedWithin));
    const Playing playing = PlayingIn(*kit.State());
    Answer answer = ToAnswer(playing, "seek");
    answer.text += PositionText(playing.at);
    return answer;
}

constexpr char kTimes[] = "give SECONDS, MM:SS, H:MM:SS, +N, or -N";

Run BuildSeek(CLI::App& app)
{
    const auto target = Argument<std::string>();
    const auto back = Argument<std::string>();
    auto* const time =
        app.add_option("time", *target, "SECONDS, MM:SS, or H:MM:SS from the start; +N or -N seconds from here");
    app.add_option("--back", *back, "Move back by this time; same as -N")->type_name("TIME")->excludes(time);
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
    return {
        {"play", "Resume playback, or play a song of the current level",
         "ipodctl play\nipodctl cd /Songs && ipodctl play 3\nipodctl play \"Blue Lantern\"", BuildPlay},
        {"pause", "Pause playback", "ipodctl pause", BuildPause},
        {"toggle", "Pause playback, or resume it", "ipodctl toggle", BuildToggle},
        {"stop", "Stop playback", "ipodctl stop", BuildStop},
        {"next", "Skip to the next track (exit code 1 at the end)", "ipodctl next", BuildNext},
        {"previous", "Skip to the previous track (exit code 1 at the start)", "ipodctl previous", BuildPrevious},
        {"seek", "Move within the playing track",
         "ipodctl seek 90\nipodctl seek 1:30\nipodctl seek +10\nipodctl seek -10", BuildSeek},
        {"ff", "Fast-forward for a while", "ipodctl ff\nipodctl ff 2.5", BuildWind<&ipodkit::Commands::FastForward>},
        {"rw", "Rewind for a while", "ipodctl rw\nipodctl rw 2.5", BuildWind<&ipodkit::Commands::FastBackward>}};
}

namespace
{
template <class E>
struct Mode
{
    const char* verb;
    ipodkit::Request<E> (ipodkit::Commands::*read)() const;
    ipodkit::Request<void> (ipodkit::Commands::*set)(E mode) const;
};

template <class E>
const std::vector<std::string>& Words()
{
    static const std::vector<std::string> words(std::begin(ipodkit::EnumNames<E>::names),
                                                std::end(ipodkit::EnumNames<E>::names));
    return words;
}

// Reads a mode back after setting it, because the service may keep the old one.
template <class E>
Answer Apply(const Mode<E>& mode, const std::string& word, Session& session)
{
    const ipodkit::Commands commands = session.Commands();
    if (!word.empty()) session.Ask((commands.*mode.set)(*ipodkit::FromName<E>(word)));
    const std::string now = ToString(session.Ask((commands.*mode.read)()));
    if (!word.empty() && now != word)
        throw Failure(kNothingDone, std::string("the service did not change the ") + mode.verb + " mode; it is " + now);
    return {{{"verb", mode.verb}, {"mode", now}}, std::string(mode.verb) + " " + now};
}

template <class E>
Run Build(CLI::App& app, const Mode<E>& mode)
{
    const auto word = Argument<std::string>();
    app.add_option("mode", *word, "New mode (" + Joined(Words<E>(), ", ") + "); without it, print the mode")
        ->check(OneOf(Words<E>()));
    return [mode, word](Context& context) { return Apply(mode, *word, context.session); };
}

Run BuildShuffle(CLI::App& app)
{
    return Build<ipodkit::Shuffle>(app, {"shuffle", &ipodkit::Commands::Shuffle, &ipodkit::Commands::SetShuffle});
}

Run BuildRepeat(CLI::App& app)
{
    return Build<ipodkit::Repeat>(app, {"repeat", &ipodkit::Commands::Repeat, &ipodkit::Commands::SetRepeat});
}
}  // namespace

std::vector<Verb> ModeVerbs()
{
    return {
        {"shuffle", "Print or set the shuffle mode (off, songs, albums)", "ipodctl shuffle\nipodctl shuffle songs",
         BuildShuffle},
        {"repeat", "Print or set the repeat mode (off, one, all)", "ipodctl repeat\nipodctl repeat all", BuildRepeat}};
}

namespace
{
struct QueueRange
{
    std::optional<int> index;
    int from = 0;
    int count = INT_MAX;
    bool names = false;
};

struct Queue
{
    int playing;
    int amount;
    int first;
    std::vector<std::string> names;
};

Queue ReadQueue(Session& session, const QueueRange& range)
{
    List list(session, ipodkit::ListKind::Playing);
    const int playing = session.Ask(session.Commands().PlayingIndex());
    const int amount = list.Count();
    if (range.from > 0) CheckIndex(range.from, amount, "the playing list");
    const int end = range.from + std::min(range.count, std::max(0, amount - range.from));
    return {playing, amount, range.from, list.Names(range.from, end, "the service did not deliver the playing list")};
}

Json QueueJson(const Queue& queue)
{
    return {{"verb", "queue"},
            {"playing", queue.playing},
            {"count", queue.amount},
            {"entries", EntriesJson(queue.first, queue.names)}};
}

std::string QueueText(const Queue& queue, const Output& out)
{
    const int digits = Width(std::to_string(queue.amount));
    const int playing = queue.playing - queue.first;
    std::vector<std::vector<std::string>> rows;
    rows.reserve(queue.names.size());
    for (int i = 0; i < static_cast<int>(queue.names.size()); ++i)
        rows.push_back({(i == playing ? "> " : "  ") + PadLeft(std::to_string(queue.first + i), digits),
                        Printable(queue.names[static_cast<std::size_t>(i)])});
    return Table(rows, out.width(),
                 [&](std::size_t row, std::vector<std::string>& cells)
                 {
                     for (std::string& cell : cells)
                         if (static_cast<int>(row) == playing) cell = out.Paint(Color::Bold, cell);
                 });
}

Answer Show(Context& context, const QueueRange& range)
{
    const Queue queue = ReadQueue(context.session, range);
    if (range.names) return {QueueJson(queue), NamesText(queue.names)};
    const std::string text = QueueText(queue, context.out);
    return {QueueJson(queue), text.empty() && context.out.terminal() ? "the playing list is empty" : text};
}

Answer Jump(Context& context, int index)
{
    Session& session = context.session;
    CheckIndex(index, session.Ask(session.Commands().PlayingCount()), "the playing list");
    TakeAudioSource(session);
    session.Ask(session.Commands().PlayPlayingEntry(index));
    return AnswerWithPlaying(context, "queue");
}

Run BuildQueue(CLI::App& app)
{
    const auto range = Argument<QueueRange>();
    auto* const entry = app.add_option("index", range->index, "Entry to jump to; without it, print the list");
    entry->transform(WholeNumber(0));
    auto* const from = app.add_option("--from", range->from, "Index of the first entry to print");
    from->type_name("INDEX")->transform(WholeNumber(0))->excludes(entry);
    auto* const count = app.add_option("--count", range->count, "Number of entries to print");
    count->transform(WholeNumber(1))->excludes(entry);
    app.add_flag("--all", "Print the whole list, which is the default")
        ->excludes(entry)
        ->excludes(from)
        ->excludes(count);
    app.add_flag("--names", range->names, "Print one name per line and nothing else, for scripts")->excludes(entry);
    return [range](Context& context) { return range->index ? Jump(context, *range->index) : Show(context, *range); };
}
}  // namespace

std::vector<Verb> QueueVerbs()
{
    return {{"queue", "Print the playing list, or jump to one of its entries",
             "ipodctl queue\nipodctl queue 4\nipodctl queue --from 100 --count 20\n"
             "ipodctl queue --json | jq .playing",
             BuildQueue}};
}
}  // namespace ctl
