// The playing list.
#include <algorithm>

#include "output/table.h"
#include "output/text.h"
#include "player/level.h"
#include "player/list.h"
#include "player/playing.h"
#include "player/source.h"
#include "verbs/verbs.h"

namespace ctl
{
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

Answer Jump(Session& session, int index)
{
    CheckIndex(index, session.Ask(session.Commands().PlayingCount()), "the playing list");
    TakeAudioSource(session);
    session.Ask(session.Commands().PlayPlayingEntry(index));
    return ToAnswer(ReadPlaying(session), "queue");
}

Run BuildQueue(CLI::App& app)
{
    const auto index = Argument<std::optional<int>>();
    const auto names = Argument<bool>();
    auto* const entry = app.add_option("index", *index, "Entry to jump to; without it, print the list");
    entry->check(WholeNumber(0));
    app.add_flag("--names", *names, "Print one name per line and nothing else, for scripts")->excludes(entry);
    return [index, names](Context& context) { return *index ? Jump(context.session, **index) : Show(context, *names); };
}
}  // namespace

std::vector<Verb> QueueVerbs()
{
    return {{"queue", "List the playing list, or jump to one of its entries",
             "ipodctl queue\nipodctl queue 4\nipodctl queue --json | jq .playing", BuildQueue}};
}
}  // namespace ctl
