/// @file
/// The command line in words: the help, wrapped to the width of the terminal, and the parts that the manual page, the
/// reference, and the completions share with it.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace ctl
{
/// ASCII letters in upper case.
std::string Upper(const std::string& text);

/// The commands of a command, in the order of their declaration.
std::vector<const CLI::App*> CommandsOf(const CLI::App& app);

/// Those of one group.
std::vector<const CLI::App*> CommandsOf(const CLI::App& app, const std::string& group);

/// The groups that the commands belong to, in the order of their first members.
std::vector<std::string> GroupsOf(const CLI::App& app);

/// "ipodctl sim battery".
std::string PathOf(const CLI::App& app);

/// "ipodctl seek [OPTIONS] [TIME]".
std::string UsageOf(const CLI::App& app);

/// The words that an option accepts if they are listed in OneOf(); none for other options.
std::vector<std::string> WordsOf(const CLI::Option& option);

/// The value: "SECONDS", "TIME"; empty for a flag.
std::string ValueOf(const CLI::Option& option);

/// "--from INDEX", "-h, --help", or for an argument "TIME".
std::string TermOf(const CLI::Option& option);

/// The description, with the default value.
std::string DescriptionOf(const CLI::Option& option);

struct HelpRow
{
    std::string name;
    std::string description;
};

/// Returns a title and its rows, the descriptions in a column of their own and wrapped; nothing without rows.
std::string HelpSection(const char* title, const std::vector<HelpRow>& rows, int width);

class HelpFormatter : public CLI::FormatterBase
{
public:
    /// @param width  columns to wrap to, at least 40 and at most 100 of them
    explicit HelpFormatter(int width);

    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;

private:
    int m_width;
};
}  // namespace ctl
