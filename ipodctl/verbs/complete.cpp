#include "verbs/complete.h"

#include <cli/help.h>

#include <CLI/CLI.hpp>

#include <utility>

#include "output/text.h"

namespace ctl
{
namespace
{
using Ask = std::function<Json(std::vector<std::string>)>;
using CommandWords = std::vector<std::string>;

// Position of the word being completed: its command, the number of preceding arguments, and the option that still needs
// a value, if any.
struct Place
{
    const CLI::App* app;
    std::size_t arguments = 0;
    const CLI::Option* option = nullptr;
};

// Maps a value, identified by command path and value name, to the command that lists its candidates. Files have no
// entry.
struct Source
{
    const char* value;
    CommandWords command;
};

const std::vector<Source>& Sources()
{
    static const std::vector<Source> sources{{"ipodctl play ENTRY", {"ls", "--all", "--no-pinyin"}},
                                             {"ipodctl cd FOLDER", {"ls", "--all", "--no-pinyin"}},
                                             {"ipodctl devices DEVICE", {"devices"}},
                                             {"ipodctl queue INDEX", {"queue"}},
                                             {"ipodctl sim actions ACTION", {"sim", "actions"}}};
    return sources;
}

bool IsOption(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

bool HasValue(const CLI::Option& option)
{
    return option.get_expected_max() > 0;
}

// Searches the command, then its parents.
const CLI::Option* FindOption(const CLI::App* app, const std::string& name)
{
    for (; app != nullptr; app = app->get_parent())
        for (const CLI::Option* option : app->get_options())
            if (!option->get_positional() && option->check_name(name)) return option;
    return nullptr;
}

Place Behind(Place place, const std::string& word)
{
    if (std::exchange(place.option, nullptr) != nullptr) return place;
    if (IsOption(word))
    {
        const CLI::Option* const option = FindOption(place.app, word);
        if (option != nullptr && HasValue(*option)) place.option = option;
        return place;
    }
    const CLI::App* const command = cli::FindCommand(*place.app, word);
    if (command != nullptr && word == "help") return place;
    return command != nullptr ? Place{command} : Place{place.app, place.arguments + 1};
}

// An argument that accepts several words also matches all later positions.
const CLI::Option* ArgumentAt(const Place& place)
{
    std::size_t number = 0;
    for (const CLI::Option* option : place.app->get_options())
    {
        if (!option->get_positional()) continue;
        if (number == place.arguments || option->get_expected_max() > 1) return option;
        ++number;
    }
    return nullptr;
}

// Prefixes an all-digit name with "./"; otherwise it would be parsed as an index.
std::string AsName(const std::string& name)
{
    const bool digits = name.find_first_not_of("0123456789") == std::string::npos;
    return (digits ? "./" : "") + Printable(name);
}

// Extracts candidates from the only array in an answer, which holds words or objects with index and name.
std::vector<Candidate> CandidatesIn(const Json& answer, bool byIndex)
{
    std::vector<Candidate> candidates;
    for (const auto& [member, list] : answer.items())
        for (const Json& entry : list.is_array() ? list : Json::array())
            if (entry.is_string())
                candidates.push_back({entry, ""});
            else if (byIndex)
                candidates.push_back({entry["index"].dump(), Printable(entry["name"].get<std::string>())});
            else
                candidates.push_back({AsName(entry["name"]), ""});
    return candidates;
}

std::vector<Candidate> AskFor(const CommandWords& command, const std::string& value, const Ask& ask)
{
    try
    {
        return CandidatesIn(ask(command), value == "INDEX");
    }
    catch (const std::exception&)
    {
        return {};
    }
}

std::vector<Candidate> ByShell(const std::string& path, const std::string& value)
{
    if (value == "COMMAND") return {{"", "commands"}};
    if (path == "ipodctl sim scenario") return {{"", "files json"}};
    return value == "FILE" ? std::vector<Candidate>{{"", "files"}} : std::vector<Candidate>();
}

std::vector<Candidate> ValuesOf(const CLI::App& app, const CLI::Option& option, const Ask& ask)
{
    std::vector<Candidate> candidates;
    for (const std::string& word : cli::WordsOf(option)) candidates.push_back({word, ""});
    if (!candidates.empty()) return candidates;
    const std::string path = cli::PathOf(app);
    const std::string value = cli::ValueOf(option);
    if (value == "FIELD") return AskFor({"sim", "actions", app.get_name()}, value, ask);
    for (const Source& source : Sources())
        if (source.value == path + " " + value) candidates = AskFor(source.command, value, ask);
    if (value == "FOLDER") candidates.insert(candidates.begin(), {{"..", "one level up"}, {"/", "the root"}});
    return candidates.empty() ? ByShell(path, value) : candidates;
}

std::vector<Candidate> OptionCandidates(const CLI::App& app)
{
    std::vector<Candidate> candidates;
    for (const CLI::App* at = &app; at != nullptr; at = at->get_parent())
        for (const CLI::Option* option : at->get_options())
            for (const std::string& name : option->get_lnames())
                if (FindOption(&app, "--" + name) == option)
                    candidates.push_back({"--" + name, option->get_description()});
    return candidates;
}

std::vector<Candidate> WordsAt(const Place& place, const Ask& ask)
{
    std::vector<Candidate> candidates;
    for (const CLI::App* command : cli::CommandsOf(*place.app))
        candidates.push_back({command->get_name(), command->get_description()});
    const CLI::Option* const argument = ArgumentAt(place);
    return argument == nullptr ? candidates : ValuesOf(*place.app, *argument, ask);
}

// Completes a value that is joined to its option: "--until=tr".
std::vector<Candidate> ValuesInside(const Place& place, const std::string& name, const Ask& ask)
{
    const CLI::Option* const option = FindOption(place.app, name);
    if (option == nullptr || !HasValue(*option)) return {};
    std::vector<Candidate> candidates = ValuesOf(*place.app, *option, ask);
    for (Candidate& candidate : candidates)
        if (!candidate.word.empty()) candidate.word.insert(0, name + "=");
    return candidates;
}
}  // namespace

std::vector<Candidate> Candidates(const CLI::App& app, const std::vector<std::string>& words, const Ask& ask)
{
    Place place{&app};
    for (std::size_t i = 0; i + 1 < words.size(); ++i) place = Behind(place, words[i]);
    const std::string typed = words.empty() ? "" : words.back();
    if (place.option != nullptr) return ValuesOf(*place.app, *place.option, ask);
    if (typed.empty() || typed.front() != '-') return WordsAt(place, ask);
    const std::size_t equals = typed.find('=');
    return equals == std::string::npos ? OptionCandidates(*place.app)
                                       : ValuesInside(place, typed.substr(0, equals), ask);
}

std::string ToText(const std::vector<Candidate>& candidates)
{
    std::string text;
    for (const Candidate& candidate : candidates)
        text += candidate.word + (candidate.description.empty() ? "" : "\t" + candidate.description) + "\n";
    return text;
}
}  // namespace ctl
