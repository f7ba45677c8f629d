#include "verbs/help.h"

#include <glib.h>

#include <algorithm>
#include <sstream>
#include <utility>

#include "output/text.h"

namespace ctl
{
namespace
{
constexpr int kNarrowest = 40;
constexpr int kWidest = 100;
constexpr int kMargin = 2;
constexpr int kDescriptions = 26;

std::string Blanks(int count)
{
    return std::string(static_cast<std::size_t>(count), ' ');
}

// The text broken between words; every line but the first is indented.
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

// A name that reaches into the column of the descriptions has a line of its own.
std::string HelpText(const HelpRow& row, int width)
{
    const int column = std::min(kDescriptions, width / 3);
    const std::string name = Blanks(kMargin) + row.name;
    const bool beside = Width(name) + kMargin <= column;
    return (beside ? Pad(name, column) : name + "\n" + Blanks(column)) + Wrapped(row.description, width, column) + "\n";
}

std::string Upper(const std::string& text)
{
    gchar* const upper = g_ascii_strup(text.c_str(), -1);
    std::string result = upper;
    g_free(upper);
    return result;
}

// The parser puts its own type in front of the one that the check has: "INT:N".
std::string ValueOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return type.empty() ? "" : " " + type.substr(type.rfind(':') + 1);
}

std::string OptionNames(const CLI::Option& option)
{
    std::string names;
    for (const std::string& name : option.get_snames()) names += (names.empty() ? "-" : ", -") + name;
    for (const std::string& name : option.get_lnames()) names += (names.empty() ? "--" : ", --") + name;
    return names + ValueOf(option);
}

std::string DescriptionOf(const CLI::Option& option)
{
    const std::string value = option.get_default_str();
    return option.get_description() + (value.empty() ? "" : " (default: " + value + ")");
}

std::string ArgumentOf(const CLI::Option& option)
{
    const std::string name = Upper(option.get_name(true)) + (option.get_expected_max() > 1 ? "..." : "");
    return option.get_required() ? name : "[" + name + "]";
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::string Usage(const CLI::App& app, const std::string& name)
{
    std::string usage = "\nUsage: " + name + " [OPTIONS]";
    for (const CLI::Option* option : app.get_options())
        if (option->get_positional()) usage += " " + ArgumentOf(*option);
    return usage + (CommandsOf(app).empty() ? "" : " COMMAND") + "\n";
}
}  // namespace

std::string HelpSection(const char* title, const std::vector<HelpRow>& rows, int width)
{
    std::string text = rows.empty() ? "" : "\n" + std::string(title) + ":\n";
    for (const HelpRow& row : rows) text += HelpText(row, width);
    return text;
}

HelpFormatter::HelpFormatter(int width) : m_width(std::clamp(width, kNarrowest, kWidest)) {}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode) const
{
    std::vector<HelpRow> arguments;
    std::vector<HelpRow> options;
    std::vector<HelpRow> commands;
    for (const CLI::Option* option : app->get_options())
        if (option->get_positional())
            arguments.push_back({Upper(option->get_name(true)), DescriptionOf(*option)});
        else
            options.push_back({OptionNames(*option), DescriptionOf(*option)});
    for (const CLI::App* command : CommandsOf(*app))
        commands.push_back({command->get_name(), command->get_description()});
    return Wrapped(app->get_description(), m_width, 0) + "\n" + Usage(*app, name) +
           HelpSection("Arguments", arguments, m_width) + HelpSection("Options", options, m_width) +
           HelpSection("Commands", commands, m_width) + "\n" + app->get_footer() + "\n";
}
}  // namespace ctl
