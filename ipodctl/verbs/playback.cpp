// Controls playback: start, stop, seek, skip, modes, and the playing list.
#include <glib.h>

#include <algorithm>
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
Run BuildSimple(const char* verb, const char* refusal)
{
    return [verb, refusal](Context& context)
    {
        AskOfTrack(context.session, (context.session.Commands().*command)(), refusal);
        return AnswerWithPlaying(context, verb);
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
        "next", "the service did not skip to the next track; ipodctl queue shows whether this is the last entry");
}

Run BuildPrevious(CLI::App&)
{
    return BuildSimple<&ipodkit::Commands::Previous>(
        "previous",
        "the service did not return to the previous track; ipodctl queue shows whether this is the first entry");
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
    return {{"play", "Resume playback, or play a song of the current level",
             "ipodctl play\nipodctl cd /Songs && ipodctl play 3\nipodctl play \"Blue in Green\"", BuildPlay},
            {"pause", "Pause playback", "ipodctl pause", BuildPause},
            {"stop", "Stop playback", "ipodctl stop", BuildStop},
            {"next", "Skip to the next track (exit code 1 at the end)", "ipodctl next", BuildNext},
            {"previous", "Skip to the previous track (exit code 1 at the start)", "ipodctl previous", BuildPrevious},
            {"seek", "Move within the playing track",
             "ipodctl seek 90\nipodctl seek 1:30\nipodctl seek +10\nipodctl seek -10", BuildSeek}};
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
    const auto number = std::find(Words<E>().begin(), Words<E>().end(), word) - Words<E>().begin();
    if (!word.empty()) session.Ask((commands.*mode.set)(static_cast<E>(number)));
    const std::string now = ToString(session.Ask((commands.*mode.read)()));
    if (!word.empty() && now != word)
        throw Failure(kNothingDone, std::string("the service keeps ") + mode.verb + " " + now);
    return {{{"verb", mode.verb}, {"mode", now}}, std::string(mode.verb) + " " + now};
}

template <class E>
Run Build(CLI::App& app, const Mode<E>& mode)
{
    const auto word = Argument<std::string>();
    app.add_option("mode", *word, "New mode (" + Listed(Words<E>()) + "); without it, print the mode")
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
struct Queue
{
    int playing;
    std::vector<std::string> names;
};

Queue ReadQueue(Session& session)
{
    List list(session, ipodkit::ListKind::Playing);
    const int playing = session.Ask(session.Commands().PlayingIndex());
    return {playing, list.Names(0, list.Count(), "the service has no page of the playing list")};
}

Json QueueJson(const Queue& queue)
{
    Json entries = Json::array();
    for (std::size_t i = 0; i < queue.names.size(); ++i) entries.push_back({{"index", i}, {"name", queue.names[i]}});
    return {{"verb", "queue"}, {"playing", queue.playing}, {"count", queue.names.size()}, {"entries", entries}};
}

std::string NamesText(const Queue& queue)
{
    std::string text;
    for (const std::string& name : queue.names) text += (text.empty() ? "" : "\n") + Printable(name);
    return text;
}

std::string QueueText(const Queue& queue, int width)
{
    const int digits = Width(std::to_string(queue.names.size()));
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < queue.names.size(); ++i)
        rows.push_back({(static_cast<int>(i) == queue.playing ? "> " : "  ") + PadLeft(std::to_string(i), digits),
                        Printable(queue.names[i])});
    return Table(rows, width);
}

Answer Show(Context& context, bool namesOnly)
{
    const Queue queue = ReadQueue(context.session);
    if (namesOnly) return {QueueJson(queue), NamesText(queue)};
    const std::string text = QueueText(queue, context.out.width());
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
    const auto index = Argument<std::optional<int>>();
    const auto names = Argument<bool>();
    auto* const entry = app.add_option("index", *index, "Entry to jump to; without it, print the list");
    entry->check(WholeNumber(0));
    app.add_flag("--names", *names, "Print one name per line and nothing else, for scripts")->excludes(entry);
    return [index, names](Context& context) { return *index ? Jump(context, **index) : Show(context, *names); };
}
}  // namespace

std::vector<Verb> QueueVerbs()
{
    return {{"queue", "Print the playing list, or jump to one of its entries",
             "ipodctl queue\nipodctl queue 4\nipodctl queue --json | jq .playing", BuildQueue}};
}
}  // namespace ctl
