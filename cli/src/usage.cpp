#include "cli/usage.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include "cli/help.h"
#include "cli/text.h"

namespace cli
{
namespace
{
// Returns the program name and the commands that were parsed.
std::string CommandOf(const CLI::App& app)
{
    const auto chosen = app.get_subcommands();
    return app.get_name() + (chosen.empty() ? "" : " " + CommandOf(*chosen.front()));
}

const CLI::App& Chosen(const CLI::App& app)
{
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? app : Chosen(*chosen.front());
}

// Returns the options of the selected command and of its parents.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& app)
{
    std::vector<const CLI::Option*> options;
    for (const CLI::App* at = &Chosen(app); at != nullptr; at = at->get_parent())
        for (const CLI::Option* option : at->get_options()) options.push_back(option);
    return options;
}

std::string Exclusion(const CLI::App& app)
{
    for (const CLI::Option* option : OptionsOf(app))
        for (const CLI::Option* other : option->get_excludes())
            if (option->count() > 0 && other->count() > 0)
                return option->get_name() + " cannot be used with " + other->get_name();
    return "these options cannot be used together";
}

std::string Unconverted(const CLI::App& app)
{
    for (const CLI::Option* option : OptionsOf(app))
        if (option->get_expected_max() == 0 && option->count() > 0 && option->results().front() != "true")
            return option->get_name() + ": does not accept a value";
    return "invalid argument";
}

// For a missing value, CLI11 provides the option name only in its message, before a colon.
std::string Mismatch(const CLI::App& app, const std::string& message)
{
    for (const CLI::Option* option : OptionsOf(app))
        if (static_cast<int>(option->count()) > std::max(1, option->get_expected_max()))
            return option->get_name() + ": can be given only once";
    return message.substr(0, message.find(':')) + ": missing value";
}

std::string MissingArgument(const CLI::App& app)
{
    for (const CLI::Option* option : OptionsOf(app))
        if (option->get_required() && option->count() == 0) return "missing argument: " + option->get_name();
    return "missing argument";
}

std::string MessageOf(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) return error.what();
    if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) return Exclusion(app);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) return Mismatch(app, error.what());
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) return Unconverted(app);
    return unknown.empty() ? MissingArgument(app) : Unexpected(unknown.front());
}

std::vector<std::string> OptionNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : OptionsOf(app))
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

// The help of a command does not describe the options of the program.
std::string HelpFor(const CLI::App& app, const std::string& message)
{
    const bool isGlobal = app.get_option_no_throw(message.substr(0, message.find(':'))) != nullptr;
    return "try '" + (isGlobal ? app.get_name() : CommandOf(app)) + " --help'";
}
}  // namespace

std::string DidYouMean(const std::string& word, const std::vector<std::string>& words, const std::string& otherwise,
                       const Nearest& nearest)
{
    const std::string similar = nearest ? Printable(nearest(word, words)) : "";
    return similar.empty() ? otherwise : "did you mean '" + similar + "'?";
}

std::string Unexpected(const std::string& word)
{
    const bool option = word.size() > 1 && word.front() == '-';
    return std::string(option ? "unknown option" : "unexpected argument") + " '" + Printable(word) + "'";
}

UsageError UnknownWord(const std::string& what, const std::string& word, const std::vector<std::string>& words,
                       const std::string& otherwise, const Nearest& nearest)
{
    return {"unknown " + what + " '" + Printable(word) + "'", DidYouMean(word, words, otherwise, nearest)};
}

std::vector<std::string> CommandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* command : CommandsOf(app)) names.push_back(command->get_name());
    return names;
}

bool AsksForHelp(const CLI::App& app, const CLI::ParseError& error)
{
    const bool unknownCommand = !CommandNames(Chosen(app)).empty() && !app.remaining(true).empty();
    return error.get_exit_code() == 0 && !unknownCommand;
}

UsageError Explain(const CLI::App& app, const CLI::ParseError& error, const Nearest& nearest)
{
    const std::vector<std::string> unknown = app.remaining(true);
    const std::vector<std::string> commands = CommandNames(Chosen(app));
    const std::string help = "try '" + CommandOf(app) + " --help'";
    const bool isWord = !unknown.empty() && (unknown.front().empty() || unknown.front().front() != '-');
    if (isWord && !commands.empty()) return UnknownWord("command", unknown.front(), commands, help, nearest);
    const bool missing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (missing && unknown.empty() && !commands.empty()) return {"missing command", help};
    const std::string message = MessageOf(app, error);
    if (unknown.empty() || isWord) return {message, HelpFor(app, message)};
    const std::string& option = unknown.front();
    return {message, DidYouMean(option.substr(0, option.find('=')), OptionNames(app), help, nearest)};
}
}  // namespace cli
