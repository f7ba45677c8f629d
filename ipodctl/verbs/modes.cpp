// Shuffle and repeat.
#include <algorithm>
#include <iterator>

#include "verbs/verbs.h"

namespace ctl
{
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

// A mode that was set is read back: the service has the last word.
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
}  // namespace ctl
