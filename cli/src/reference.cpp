#include "cli/reference.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <regex>

namespace cli
{
namespace
{
using Lines = std::vector<std::string>;

struct Page
{
    Lines lines;
    std::map<std::string, Lines> notes;
};

Page ReadPage(const char* file)
{
    Page page;
    Lines* at = &page.lines;
    std::ifstream input(file);
    for (std::string line; std::getline(input, line);)
        if (line.rfind("#### ", 0) == 0)
            at = &page.notes[line.substr(5)];
        else
            at->push_back(line);
    return page;
}

void AddRows(Lines& lines, const std::vector<HelpRow>& rows)
{
    lines.emplace_back();
    for (const HelpRow& row : rows) lines.push_back("* `" + row.name + "`: " + row.description);
}

// Lists --help once, for the program: every command accepts it.
void AddOptions(Lines& lines, const CLI::App& app)
{
    std::vector<HelpRow> rows;
    for (const CLI::Option* option : app.get_options())
        if (app.get_parent() == nullptr || option != app.get_help_ptr())
            rows.push_back({TermOf(*option), DescriptionOf(*option)});
    if (!rows.empty()) AddRows(lines, rows);
}

void AddCommand(Lines& lines, const CLI::App& app, std::map<std::string, Lines>& notes)
{
    const std::string path = PathOf(app);
    const std::string name = path.substr(path.find(' ') + 1);
    lines.insert(lines.end(), {"", "#### " + name, "", "    " + UsageOf(app), "", app.get_description() + "."});
    AddOptions(lines, app);
    const Lines note = notes[name];
    notes.erase(name);
    lines.insert(lines.end(), note.begin(), note.end());
    for (const CLI::App* command : CommandsOf(app)) AddCommand(lines, *command, notes);
}

void AddCommands(Lines& lines, const CLI::App& app, std::map<std::string, Lines>& notes)
{
    for (const std::string& group : GroupsOf(app))
    {
        lines.insert(lines.end(), {"", "### " + group});
        for (const CLI::App* command : CommandsOf(app, group)) AddCommand(lines, *command, notes);
    }
}

// Replaces the placeholders and collapses consecutive empty lines.
Lines Reference(const CLI::App& app, const Tables& tables, Page page)
{
    Lines lines;
    for (const std::string& line : page.lines)
        if (line == "@options")
            AddOptions(lines, app);
        else if (line == "@commands")
            AddCommands(lines, app, page.notes);
        else if (tables.count(line) != 0)
            AddRows(lines, tables.at(line));
        else
            lines.push_back(line);
    if (!page.notes.empty()) throw std::runtime_error("no command '" + page.notes.begin()->first + "'");
    const auto both = [](const std::string& one, const std::string& two) { return one.empty() && two.empty(); };
    lines.erase(std::unique(lines.begin(), lines.end(), both), lines.end());
    return lines;
}

std::string Escaped(const std::string& text)
{
    const std::string escaped =
        std::regex_replace(std::regex_replace(text, std::regex(R"(\\)"), R"(\e)"), std::regex("-"), R"(\-)");
    const bool request = !escaped.empty() && (escaped.front() == '.' || escaped.front() == '\'');
    return (request ? R"(\&)" : "") + escaped;
}

// Renders `code` in bold and, inside it, placeholders in capital letters in italics.
std::string ToRoff(const std::string& text)
{
    static const std::regex link(R"(\[([^\]]*)\]\([^)]*\))");
    static const std::regex value(R"((^|[ \[=:])([A-Z]+)(?=$|[ .\]=:,]))");
    std::istringstream parts(Escaped(std::regex_replace(text, link, "$1")));
    std::string roff;
    bool code = false;
    for (std::string part; std::getline(parts, part, '`'); code = !code)
        roff += code ? R"(\fB)" + std::regex_replace(part, value, R"($1\fI$2\fB)") + R"(\fR)" : part;
    return roff;
}

// Converts the page's subset of Markdown to roff, line by line.
class ManualWriter
{
public:
    void Write(const std::string& line)
    {
        const bool code = line.rfind("    ", 0) == 0;
        if (m_code && !code) std::cout << ".fi\n.RE\n";
        if (code && !m_code && !m_usage) std::cout << ".PP\n.RS 4\n.nf\n";
        m_code = code && !m_usage;
        if (code)
            WriteCode(line.substr(4));
        else
            WriteText(line);
    }

private:
    void WriteCode(const std::string& text)
    {
        if (m_usage)
            std::cout << ".PP\n" << ToRoff("`" + text + "`") << "\n.RS 4\n";
        else
            std::cout << Escaped(text) << "\n";
        m_inside = m_inside || m_usage;
        m_usage = false;
    }

    void WriteText(const std::string& line)
    {
        std::smatch found;
        if (std::regex_match(line, found, std::regex(R"((#+) (.*))")))
            WriteTitle(found[1].length(), found[2]);
        else if (std::regex_match(line, found, std::regex(R"(\* (`[^`]*`): (.*))")))
            std::cout << ".TP\n" << ToRoff(found[1]) << "\n" << ToRoff(found[2]) << "\n";
        else if (line.empty())
            m_paragraph = true;
        else
            std::cout << (std::exchange(m_paragraph, false) ? ".PP\n" : "") << ToRoff(line) << "\n";
    }

    // Omits the page title, which .TH prints, and command titles, which the usage line replaces.
    void WriteTitle(std::ptrdiff_t depth, const std::string& title)
    {
        if (std::exchange(m_inside, false)) std::cout << ".RE\n";
        if (depth == 2) std::cout << ".SH \"" << Escaped(Upper(title)) << "\"\n";
        if (depth == 3) std::cout << ".SS \"" << Escaped(title) << "\"\n";
        m_usage = depth == 4;
        m_paragraph = false;
    }

    bool m_code = false;
    bool m_usage = false;
    bool m_inside = false;
    bool m_paragraph = false;
};

void WriteManual(const CLI::App& app, const Lines& lines)
{
    std::cout << ".TH " << Escaped(Upper(app.get_name())) << " 1 \"\" \"libipod " IPOD_VERSION
              << "\" \"User Commands\"\n";
    ManualWriter writer;
    for (const std::string& line : lines)
        if (line.rfind("<!--", 0) != 0) writer.Write(line);
}
}  // namespace

int MakeReference(const CommandLine& commandLine, const Tables& tables, const std::string& form, const char* page)
try
{
    CLI::App app;
    commandLine(app);
    const Lines lines = Reference(app, tables, ReadPage(page));
    if (form == "man") WriteManual(app, lines);
    if (form == "markdown")
        for (const std::string& line : lines) std::cout << line << "\n";
    return std::cout.flush() ? 0 : 1;
}
catch (const std::exception& error)
{
    std::cerr << page << ": " << error.what() << "\n";
    return 1;
}
}  // namespace cli
