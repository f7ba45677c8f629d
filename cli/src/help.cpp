#include "cli/help.h"

#include <glib.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <set>
#include <sstream>

namespace cli
{
namespace
{
constexpr int kNarrowest = 40;
constexpr int kWidest = 100;
constexpr int kMargin = 2;
constexpr int kDescriptions = 26;

// The texts are the program's own: each character has one column.
int Width(const std::string& text)
{
    return static_cast<int>(g_utf8_strlen(text.c_str(), -1));
}

std::string Blanks(int count)
{
    return std::string(static_cast<std::size_t>(count), ' ');
}

// Wraps text at word boundaries and indents every line except the first.
std::string Wrapped(const std::string& text, int width, int indent)
{
    std::istringstream words(text);
    std::string wrapped;
    int used = indent;
    for (std::string word; words >> word; used += Width(word))
    {
        const bool first = wrapped.empty();
        const bool fits = used + 1 + Width(word) <= width;
        if (!first) wrapped += fits ? " " : "\n" + Blanks(indent);
        if (!first) used = fits ? used + 1 : indent;
        wrapped += word;
    }
    return wrapped;
}

// Puts a name that is too long for its column on a separate line.
std::string HelpText(const HelpRow& row, int width)
{
    const int column = std::min(kDescriptions, width / 3);
    const std::string name = Blanks(kMargin) + row.name;
    const bool beside = Width(name) + kMargin <= column;
    return (beside ? name + Blanks(column - Width(name)) : name + "\n" + Blanks(column)) +
           Wrapped(row.description, width, column) + "\n";
}

// Matches the type names that CLI11 assigns itself.
bool IsParserType(const std::string& type)
{
    static const std::set<std::string> types{"TEXT", "INT", "UINT", "FLOAT", "BOOLEAN"};
    return types.count(type) != 0;
}

std::string ArgumentOf(const CLI::Option& option)
{
    const std::string name = ValueOf(option) + (option.get_expected_max() > 1 ? "..." : "");
    return option.get_required() ? name : "[" + name + "]";
}

// CLI11 joins its own type and the types of validators with colons: "INT:N".
std::vector<std::string> TypesOf(const CLI::Option& option)
{
    return CLI::detail::split(option.get_type_name(), ':');
}
}  // namespace

std::string Upper(const std::string& text)
{
    gchar* const upper = g_ascii_strup(text.c_str(), -1);
    std::string result = upper;
    g_free(upper);
    return result;
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& app, const std::string& group)
{
    return app.get_subcommands([&group](const CLI::App* command) { return command->get_group() == group; });
}

const CLI::App* FindCommand(const CLI::App& app, const std::string& name)
{
    for (const CLI::App* command : CommandsOf(app))
        if (command->get_name() == name) return command;
    return nullptr;
}

std::vector<std::string> GroupsOf(const CLI::App& app)
{
    std::vector<std::string> groups;
    for (const CLI::App* command : CommandsOf(app))
        if (std::find(groups.begin(), groups.end(), command->get_group()) == groups.end())
            groups.push_back(command->get_group());
    return groups;
}

std::string PathOf(const CLI::App& app)
{
    return (app.get_parent() == nullptr ? "" : PathOf(*app.get_parent()) + " ") + app.get_name();
}

std::string UsageOf(const CLI::App& app)
{
    std::string usage = PathOf(app) + " [OPTIONS]";
    for (const CLI::Option* option : app.get_options())
        if (option->get_positional()) usage += " " + ArgumentOf(*option);
    return usage + (CommandsOf(app).empty() ? "" : " COMMAND");
}

std::vector<std::string> WordsOf(const CLI::Option& option)
{
    const std::vector<std::string> types = TypesOf(option);
    const bool listed = types.size() > 1 && types.back().find('|') != std::string::npos;
    return listed ? CLI::detail::split(types.back(), '|') : std::vector<std::string>();
}

std::string ValueOf(const CLI::Option& option)
{
    const std::vector<std::string> types = TypesOf(option);
    if (option.get_positional()) return Upper(option.get_name(true));
    return types.size() > 1 && IsParserType(types.front()) ? types.back() : types.front();
}

std::string TermOf(const CLI::Option& option)
{
    std::string names;
    for (const std::string& name : option.get_snames()) names += (names.empty() ? "-" : ", -") + name;
    for (const std::string& name : option.get_lnames()) names += (names.empty() ? "--" : ", --") + name;
    const std::string value = ValueOf(option);
    return names + (names.empty() || value.empty() ? "" : " ") + value;
}

std::string DescriptionOf(const CLI::Option& option)
{
    const std::string value = option.get_default_str();
    return option.get_description() + (value.empty() ? "" : " (default: " + value + ")");
}

std::string ExitCodeSection(const std::vector<HelpRow>& rows)
{
    std::string text = "Exit codes:";
    for (const HelpRow& row : rows) text += "\n  " + row.name + "  " + row.description;
    return text;
}

std::string HelpSection(const char* title, const std::vector<HelpRow>& rows, int width)
{
    std::string text = rows.empty() ? "" : "\n" + std::string(title) + ":\n";
    for (const HelpRow& row : rows) text += HelpText(row, width);
    return text;
}

namespace
{
class HelpFormatter : public CLI::FormatterBase
{
public:
    explicit HelpFormatter(int width) : m_width(std::clamp(width, kNarrowest, kWidest)) {}

    std::string make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const override
    {
        std::vector<HelpRow> arguments;
        std::vector<HelpRow> options;
        for (const CLI::Option* option : app->get_options())
            (option->get_positional() ? arguments : options).push_back({TermOf(*option), DescriptionOf(*option)});
        std::string text = Wrapped(app->get_description(), m_width, 0) + "\n\nUsage: " + UsageOf(*app) + "\n" +
                           HelpSection("Arguments", arguments, m_width) + HelpSection("Options", options, m_width);
        for (const std::string& group : GroupsOf(*app))
        {
            std::vector<HelpRow> commands;
            for (const CLI::App* command : CommandsOf(*app, group))
                commands.push_back({command->get_name(), command->get_description()});
            text += HelpSection(group.c_str(), commands, m_width);
        }
        return text + "\n" + app->get_footer() + "\n";
    }

private:
    int m_width;
};
}  // namespace

void FormatHelp(CLI::App& app, int width)
{
    app.formatter(std::make_shared<HelpFormatter>(width));
}
}  // namespace cli
