// Shuffle and repeat.
#include "output/names.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
// The modes count from 0 in the order of their words.
struct Mode
{
    const char* verb;
    std::vector<std::string> words;
    int (*read)(Session& session);
    std::string (*name)(int);
    ipodkit::Request<void> (*set)(const ipodkit::Commands& commands, int mode);
};

int NumberOf(const Mode& mode, const std::string& word)
{
    int number = 0;
    while (mode.words[static_cast<std::size_t>(number)] != word) ++number;
    return number;
}

// A mode that was set is read back: the service has the last word.
Answer Apply(const Mode& mode, const std::string& word, Session& session)
{
    if (!word.empty()) session.Ask(mode.set(session.Commands(), NumberOf(mode, word)));
    const std::string now = mode.name(mode.read(session));
    if (!word.empty() && now != word)
        throw Failure(kNothingDone, std::string("the service keeps ") + mode.verb + " " + now);
    return {{{"verb", mode.verb}, {"mode", now}}, std::string(mode.verb) + " " + now};
}

Run Build(CLI::App& app, const Mode& mode)
{
    const auto word = Argument<std::string>();
    app.add_option("mode", *word, "New mode (" + Listed(mode.words) + "); without it, print the mode")
        ->check(OneOf(mode.words));
    return [mode, word](Context& context) { return Apply(mode, *word, context.session); };
}

Run BuildShuffle(CLI::App& app)
{
    return Build(app, {"shuffle",
                       {"off", "songs", "albums"},
                       [](Session& session) -> int { return session.Ask(session.Commands().Shuffle()); },
                       ShuffleName,
                       [](const ipodkit::Commands& commands, int mode)
                       { return commands.SetShuffle(static_cast<iPodPlayerShuffleStatus>(mode)); }});
}

Run BuildRepeat(CLI::App& app)
{
    return Build(app, {"repeat",
                       {"off", "one", "all"},
                       [](Session& session) -> int { return session.Ask(session.Commands().Repeat()); },
                       RepeatName,
                       [](const ipodkit::Commands& commands, int mode)
                       { return commands.SetRepeat(static_cast<iPodPlayerRepeatStatus>(mode)); }});
}
}  // namespace

std::vector<Verb> ModeVerbs()
{
    return {
        {"shuffle", "Print or set the shuffle mode (off, songs, albums)", "ipodctl shuffle\nipodctl shuffle songs",
         BuildShuffle},
        {"repeat", "Print or set the repeat mode (off, one, all)", "ipodctl repeat\nipodctl repeat all", BuildRepeat}};
}
}  // namespace ctl
