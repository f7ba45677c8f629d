/// @file
/// Formats the help text, wrapped to the terminal width, and provides the parts that the manual page, the reference,
/// and the completions share with it.
#pragma once

#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
}  // namespace CLI

namespace cli
{
/// Columns of the help, unless the terminal is narrower.
constexpr int kHelpWidth = 80;

/// Converts ASCII letters to upper case.
std::string Upper(const std::string& text);

/// Returns the subcommands of @p app in declaration order.
std::vector<const CLI::App*> CommandsOf(const CLI::App& app);

/// Returns the subcommands of @p app that belong to @p group.
std::vector<const CLI::App*> CommandsOf(const CLI::App& app, const std::string& group);

/// Returns the subcommand of @p app with this name; null if there is none.
const CLI::App* FindCommand(const CLI::App& app, const std::string& name);

/// Returns the groups of the subcommands, ordered by first use.
std::vector<std::string> GroupsOf(const CLI::App& app);

/// Returns the full name of a command: "ipodctl sim battery".
std::string PathOf(const CLI::App& app);

/// Returns the synopsis of a command: "ipodctl seek [OPTIONS] [TIME]".
std::string UsageOf(const CLI::App& app);

/// Returns the words that an option accepts if it uses OneOf(); empty for other options.
std::vector<std::string> WordsOf(const CLI::Option& option);

/// Returns the name of an option's value, such as "SECONDS" or "TIME"; empty for a flag.
std::string ValueOf(const CLI::Option& option);

/// Returns the help term: "--from INDEX", "-h, --help", or "TIME" for an argument.
std::string TermOf(const CLI::Option& option);

/// Returns the description, followed by the default value if there is one.
std::string DescriptionOf(const CLI::Option& option);

struct HelpRow
{
    std::string name;
    std::string description;
};

/// Returns the section of the exit codes: a row on each line, without a line break at the end.
std::string ExitCodeSection(const std::vector<HelpRow>& rows);

/// Returns a titled section with wrapped descriptions in a second column; empty without rows.
std::string HelpSection(const char* title, const std::vector<HelpRow>& rows, int width = kHelpWidth);

/// Lets @p app and its subcommands print help in this form.
/// @param width  columns to wrap at, clamped to 40..100
void FormatHelp(CLI::App& app, int width = kHelpWidth);
}  // namespace cli
