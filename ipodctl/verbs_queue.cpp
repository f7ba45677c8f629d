// The playing list.
#include <algorithm>

#include "level.h"
#include "playing.h"
#include "source.h"
#include "table.h"
#include "text.h"
#include "verbs.h"

namespace ctl
{
namespace
{
constexpr int kPageSize = 500;

struct Queue
{
    int playing;
    std::vector<std::string> names;
};

int Amount(Session& session)
{
    return std::max(0, session.Ask([](IQBXIpodPlayer& player) { return player.GetPlayingListItemsAmount(); }));
}

std::vector<std::string> ReadNames(Session& session, int first, int last)
{
    std::vector<std::string> names;
    if (session.Ask([&](IQBXIpodPlayer& player) { return player.GetPlayingListItems(first, last, names); }) != 1)
        throw Failure(kNothingDone, "the service has no page of the playing list");
    names.resize(std::min(names.size(), static_cast<std::size_t>(last - first) + 1));
    return names;
}

Queue ReadQueue(Session& session)
{
    Queue queue{session.Ask([](IQBXIpodPlayer& player) { return player.GetPlayingTrackIdx(); }), {}};
    const int amount = Amount(session);
    for (int first = 0; first < amount; first += kPageSize)
    {
        const std::vector<std::string> names = ReadNames(session, first, std::min(first + kPageSize, amount) - 1);
        if (names.empty()) break;
        queue.names.insert(queue.names.end(), names.begin(), names.end());
    }
    return queue;
}

Json QueueJson(const Queue& queue)
{
    Json entries = Json::array();
    for (std::size_t i = 0; i < queue.names.size(); ++i) entries.push_back({{"index", i}, {"name", queue.names[i]}});
    return {{"verb", "queue"}, {"playing", queue.playing}, {"count", queue.names.size()}, {"entries", entries}};
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

Answer Show(Context& context)
{
    const Queue queue = ReadQueue(context.session);
    const std::string text = QueueText(queue, context.out.width());
    return {QueueJson(queue), text.empty() && context.out.terminal() ? "the playing list is empty" : text};
}

Answer Jump(Session& session, int index)
{
    CheckIndex(index, Amount(session), "the playing list");
    TakeAudioSource(session);
    session.Ask([&](IQBXIpodPlayer& player) { player.PlayPlayingList(index); });
    return NowPlaying(session, "queue");
}

Run BuildQueue(CLI::App& app)
{
    const auto index = Argument<std::optional<int>>();
    app.add_option("index", *index, "Entry to jump to; without it, the list is shown")->check(WholeNumber(0));
    return [index](Context& context) { return *index ? Jump(context.session, **index) : Show(context); };
}
}  // namespace

std::vector<Verb> QueueVerbs()
{
    return {{"queue", "Show the playing list, or jump to one of its entries",
             "ipodctl queue\nipodctl queue 4\nipodctl queue --json | jq .playing", BuildQueue}};
}
}  // namespace ctl
