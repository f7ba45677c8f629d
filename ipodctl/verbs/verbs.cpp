#include "verbs/verbs.h"

#include <glib.h>

#include <algorithm>
#include <charconv>
#include <sstream>

#include "output/text.h"
#include "verbs/help.h"
#include "verbs/usage.h"

namespace ctl
{
namespace
{
std::string Footer(const char* examples)
{
    std::istringstream lines(examples);
    std::string text = "Examples:";
    for (std::string line; std::getline(lines, line);) text += "\n  " + line;
    return text;
}

struct Choice
{
    const CLI::App* app;
    Run run;
};

Choice Add(CLI::App& app, const Verb& verb)
{
    CLI::App* const added = app.add_subcommand(verb.name, verb.summary);
    added->group(verb.group);
    added->fallthrough();
    added->footer(Footer(verb.examples));
    return {added, verb.build(*added)};
}

std::vector<std::string> NamesOf(const std::vector<const CLI::App*>& commands)
{
    std::vector<std::string> names(commands.size());
    std::transform(commands.begin(), commands.end(), names.begin(),
                   [](const CLI::App* command) { return command->get_name(); });
    return names;
}

bool IsBackward(const std::string& argument)
{
    return argument.size() > 1 && argument[0] == '-' && argument[1] >= '0' && argument[1] <= '9';
}

// Returns the first word that is neither an option nor the value of an option that may precede the verb.
std::vector<std::string>::iterator FindVerb(std::vector<std::string>& arguments)
{
    const auto isWord = [](const std::string& argument) { return argument.empty() || argument[0] != '-'; };
    auto found = std::find_if(arguments.begin(), arguments.end(), isWord);
    const auto isValue = [&] { return *std::prev(found) == "--deadline" || *std::prev(found) == "--color"; };
    while (found != arguments.end() && found != arguments.begin() && isValue())
        found = std::find_if(std::next(found), arguments.end(), isWord);
    return found;
}

// CLI11 parses "-10" as an option, even after an option that expects a value.
void SpellOutBackward(std::vector<std::string>& arguments)
{
    std::vector<std::string> spelled;
    bool literal = false;
    for (const std::string& argument : arguments)
    {
        literal = literal || argument == "--";
        if (literal || !IsBackward(argument))
            spelled.push_back(argument);
        else if (!spelled.empty() && spelled.back() == "--back")
            spelled.back() += "=" + argument;
        else
            spelled.push_back("--back=" + argument.substr(1));
    }
    arguments = std::move(spelled);
}
}  // namespace

CLI::Validator WholeNumber(int least)
{
    const auto check = [least](const std::string& text)
    {
        const std::optional<int> number = ParseIndex(text);
        if (number && *number >= least) return std::string();
        return "expected an integer between " + std::to_string(least) + " and " + std::to_string(kLargestIndex) +
               ", got '" + Printable(text) + "'";
    };
    return {check, "N"};
}

CLI::Validator NumberUpTo(std::uint64_t most, std::uint64_t least)
{
    const auto check = [most, least](const std::string& text)
    {
        std::uint64_t number = 0;
        const char* const end = text.data() + text.size();
        const auto [read, error] = std::from_chars(text.data(), end, number);
        if (error == std::errc() && read == end && number >= least && number <= most) return std::string();
        return "expected an integer between " + std::to_string(least) + " and " + std::to_string(most) + ", got '" +
               Printable(text) + "'";
    };
    return {check, "N"};
}

CLI::Validator NonEmpty()
{
    return {[](const std::string& text) { return text.empty() ? "must not be empty" : ""; }, ""};
}

CLI::Validator OneOf(const std::vector<std::string>& words)
{
    const auto check = [words](const std::string& text)
    {
        const bool known = std::find(words.begin(), words.end(), text) != words.end();
        return known ? std::string() : "expected one of " + Listed(words) + ", got '" + Printable(text) + "'";
    };
    return {check, CLI::detail::join(words, "|")};
}

std::string Listed(const std::vector<std::string>& words)
{
    std::string listed;
    for (const std::string& word : words) listed += (listed.empty() ? "" : ", ") + word;
    return listed;
}

CLI::Validator Seconds(double most)
{
    constexpr double kLeast = 0.001;
    const auto check = [most](const std::string& text)
    {
        char* end = nullptr;
        const double number = g_ascii_strtod(text.c_str(), &end);
        // The range check rejects NaN, which compares false with everything.
        if (!text.empty() && *end == '\0' && number >= kLeast && number <= most) return std::string();
        return "expected a number of seconds between 0.001 and " + std::to_string(static_cast<long>(most)) + ", got '" +
               Printable(text) + "'";
    };
    return {check, "SECONDS"};
}

void AddLimits(CLI::App& app, Limits& limits, const std::string& goal)
{
    app.add_option("--count", limits.count, "End after this many events")->check(WholeNumber(1));
    app.add_option("--timeout", limits.seconds, "End after this long, with exit code 1 if " + goal + " was not reached")
        ->check(Seconds());
}

Run AddVerbs(CLI::App& app, const std::vector<Verb>& verbs)
{
    app.require_subcommand(1);
    std::vector<Choice> choices;
    choices.reserve(verbs.size());
    for (const Verb& verb : verbs) choices.push_back(Add(app, verb));
    return [choices](Context& context)
    {
        const auto chosen =
            std::find_if(choices.begin(), choices.end(), [](const Choice& choice) { return choice.app->parsed(); });
        return chosen->run(context);
    };
}

std::vector<std::string> ToParse(int argc, char** argv, const CLI::App& app)
{
    std::vector<std::string> arguments(argv + std::min(1, argc), argv + argc);
    auto verb = FindVerb(arguments);
    const bool alone = std::find(arguments.begin(), arguments.end(), "--help") == arguments.end();
    if (verb != arguments.end() && *verb == "help" && alone)
    {
        arguments.erase(verb);
        arguments.emplace_back("--help");
        verb = FindVerb(arguments);
    }
    const std::vector<std::string> names = NamesOf(CommandsOf(app));
    if (verb != arguments.end() && std::find(names.begin(), names.end(), *verb) == names.end())
        throw UnknownWord("command", *verb, names, "try 'ipodctl --help'");
    if (verb != arguments.end() && *verb == "seek") SpellOutBackward(arguments);
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

namespace
{
struct Subject
{
    const char* title;
    std::vector<std::vector<Verb> (*)()> verbs;
};

const std::vector<Subject>& Subjects()
{
    static const std::vector<Subject> subjects{
        {"Playback commands", {StatusVerbs, TransportVerbs, ModeVerbs, QueueVerbs}},
        {"Browsing commands", {ListVerbs, BrowseVerbs, BrowserVerbs}},
        {"Device commands", {DeviceVerbs, EapVerbs}},
        {"Event commands", {EventVerbs}},
        {"Diagnostic commands", {DoctorVerbs, SharedMemoryVerbs, BenchVerbs, LayoutVerbs}},
        {"Simulator commands", {SimVerbs}},
        {"Other commands", {HelpVerbs}}};
    return subjects;
}

// The manual page has the full descriptions.
std::string Footer()
{
    std::string text = "Exit codes:\n";
    for (const HelpRow& row : ExitCodes()) text += "  " + row.name + "  " + row.description + "\n";
    text += HelpSection("Environment", EnvironmentVariables(), 80);
    return text + "\nRun 'ipodctl COMMAND --help' for the arguments and examples of a command.";
}

void AddOptions(CLI::App& app, Options& options)
{
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.add_flag("--json", options.json, "Print JSON, one object per line (ipodctl.schema.json)");
    app.add_flag("--verbose", options.settings.verbose, "Print every request and the library's log on standard error");
    app.add_option("--deadline", options.settings.deadline, "Time to wait for an answer of the service (default: 10)")
        ->check(Seconds(86400));
    app.add_option_function<std::string>(
           "--color",
           [&options](const std::string& when) {
               options.colours = when == "always"  ? ColourUse::Always
                                 : when == "never" ? ColourUse::Never
                                                   : ColourUse::Auto;
           },
           "Color the text; auto: on a terminal, unless NO_COLOR is set (default: auto)")
        ->check(OneOf({"auto", "always", "never"}));
    app.set_version_flag("-V,--version", "ipodctl " IPODCTL_VERSION, "Print the version and exit");
    app.footer(Footer());
}
}  // namespace

const std::vector<HelpRow>& ExitCodes()
{
    static const std::vector<HelpRow> codes{
        {"0", "done"},
        {"1", "the service refused, the lists are in use, or there was nothing to do"},
        {"2", "usage: unknown command, index out of range, name not found, file not usable"},
        {"3", "no session bus"},
        {"4", "no iPod service on the bus"},
        {"5", "shared memory cannot be attached or written"},
        {"6", "the service exited, did not answer, or sent invalid data"},
        {"7", "the output cannot be written (such as a full disk)"},
        {"130", "interrupted; commands that run until Ctrl-C exit with 0"}};
    return codes;
}

const std::vector<HelpRow>& EnvironmentVariables()
{
    static const std::vector<HelpRow> variables{
        {"DBUS_SESSION_BUS_ADDRESS", "The session bus"},
        {"NO_COLOR", "Print no colors if set, except with --color always"},
        {"QBX_LOG",
         "Log records of this level and above: LEVEL (to standard error) or LEVEL:FILE, such as DEBUG:/tmp/log"},
        {"QBX_SOURCE_REFUSE", "Code with which the stand-in audio-source manager refuses requests"}};
    return variables;
}

// ToParse() turns "help VERB" into "VERB --help".
std::vector<Verb> HelpVerbs()
{
    const auto build = [](CLI::App& app) -> Run
    {
        app.add_option("command", *Argument<std::vector<std::string>>(),
                       "Command, with the one inside it if there is one");
        return [](Context&) { return Answer{}; };
    };
    return {{"help", "Print the help of a command", "ipodctl help seek\nipodctl help sim battery", build}};
}

Run BuildProgram(CLI::App& app, Options& options)
{
    app.name("ipodctl");
    app.description("Controls the Apple device attached to the head unit, through the iPod service.");
    AddOptions(app, options);
    std::vector<Verb> all;
    for (const Subject& subject : Subjects())
        for (const auto verbs : subject.verbs)
            for (Verb verb : verbs())
            {
                verb.group = subject.title;
                all.push_back(verb);
            }
    return AddVerbs(app, all);
}
}  // namespace ctl
