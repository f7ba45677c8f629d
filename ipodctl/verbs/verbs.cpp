#include "verbs/verbs.h"

#include <glib.h>

#include <algorithm>

#include "output/text.h"
#include "verbs/command_line.h"
#include "verbs/usage.h"

namespace ctl
{
namespace
{
struct AddedVerb
{
    const CLI::App* app;
    Run run;
};

AddedVerb Add(CLI::App& app, const Verb& verb)
{
    CLI::App* const added = app.add_subcommand(verb.name, verb.summary);
    added->group(verb.group);
    added->fallthrough();
    added->footer("Examples:\n  " + Joined(Split(verb.examples), "\n  "));
    return {added, verb.build(*added)};
}

bool IsBackward(const std::string& argument)
{
    return argument.size() > 1 && argument[0] == '-' && argument[1] >= '0' && argument[1] <= '9';
}

// Returns the first word that is neither an option nor the value of one. Empty behind an unknown option, which may have
// a value: the parser reports it.
std::string FindVerb(const std::vector<std::string>& arguments, const CLI::App& app)
{
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& argument = arguments[i];
        if (argument.empty() || argument[0] != '-') return argument;
        const std::size_t equals = argument.find('=');
        const CLI::Option* const option = app.get_option_no_throw(argument.substr(0, equals));
        if (option == nullptr) return {};
        if (equals == std::string::npos && option->get_expected_max() > 0) ++i;
    }
    return {};
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
    return cli::NumberUpTo(kLargestIndex, static_cast<std::uint64_t>(least));
}

CLI::Validator OneOf(const std::vector<std::string>& words)
{
    const auto check = [words](const std::string& text)
    {
        const bool known = std::find(words.begin(), words.end(), text) != words.end();
        return known ? std::string() : "expected one of " + Joined(words, ", ") + ", got '" + Printable(text) + "'";
    };
    return {check, CLI::detail::join(words, "|")};
}

CLI::Validator Seconds(double most)
{
    constexpr double kLeast = 0.001;
    const auto check = [most](const std::string& text)
    {
        const std::optional<double> number = cli::Parsed<double>(text);
        // The range check rejects NaN, which compares false with everything.
        if (number && *number >= kLeast && *number <= most) return std::string();
        return cli::NotBetween("a number of seconds", "0.001", std::to_string(static_cast<long>(most)), text);
    };
    return {check, "SECONDS"};
}

void AddLimits(CLI::App& app, Limits& limits, const std::string& goal)
{
    app.add_option("--count", limits.count, "End after this many events")->transform(WholeNumber(1));
    app.add_option("--timeout", limits.seconds, "End after this long, with exit code 1 if " + goal + " was not reached")
        ->check(Seconds());
}

Run AddVerbs(CLI::App& app, const std::vector<Verb>& verbs)
{
    app.require_subcommand(1);
    std::vector<AddedVerb> choices;
    choices.reserve(verbs.size());
    for (const Verb& verb : verbs) choices.push_back(Add(app, verb));
    return [choices](Context& context)
    {
        const auto chosen =
            std::find_if(choices.begin(), choices.end(), [](const AddedVerb& choice) { return choice.app->parsed(); });
        return chosen->run(context);
    };
}

std::vector<std::string> ToParse(int argc, char** argv, const CLI::App& app)
{
    std::vector<std::string> arguments(argv + std::min(1, argc), argv + argc);
    const std::string verb = FindVerb(arguments, app);
    if (!verb.empty()) CommandIn(app, verb);
    if (verb == "seek") SpellOutBackward(arguments);
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

Run WithoutArguments(CLI::App&)
{
    return {};
}

// The manual page has the full descriptions.
std::string Footer()
{
    return cli::ExitCodeSection(ExitCodes()) + "\n" + cli::HelpSection("Environment", EnvironmentVariables()) +
           "\nRun 'ipodctl COMMAND --help' for the arguments and examples of a command.";
}

void AddOptions(CLI::App& app, Options& options)
{
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.add_flag("--json", options.json, "Print JSON, one object per line (ipodctl.schema.json)");
    app.add_flag("--verbose", options.settings.verbose, "Print every request and the library's log on standard error");
    app.add_option("--deadline", options.settings.deadline, "Time to wait for a reply from the service (default: 10)")
        ->check(Seconds(86400));
    app.add_option_function<std::string>(
           "--color",
           [&options](const std::string& when) {
               options.colors = when == "always"  ? ColorUse::Always
                                : when == "never" ? ColorUse::Never
                                                  : ColorUse::Auto;
           },
           "Color the text; auto: on a terminal, unless NO_COLOR is set (default: auto)")
        ->check(OneOf({"auto", "always", "never"}));
    app.set_version_flag("-V,--version", "ipodctl " IPODCTL_VERSION, "Print the version and exit");
    app.footer(Footer());
}
}  // namespace

const std::vector<cli::HelpRow>& ExitCodes()
{
    static const std::vector<cli::HelpRow> codes{
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

const std::vector<cli::HelpRow>& EnvironmentVariables()
{
    static const std::vector<cli::HelpRow> variables{
        {"DBUS_SESSION_BUS_ADDRESS", "The session bus"},
        {"NO_COLOR", "Disables colors if set, except with --color always"},
        {"QBX_LOG",
         "Log records of this level and above: LEVEL (to standard error) or LEVEL:FILE, such as DEBUG:/tmp/log"},
        {"QBX_SOURCE_REFUSE", "Error code that the stand-in audio-source manager returns for every request"}};
    return variables;
}

std::vector<Verb> HelpVerbs()
{
    const auto build = [](CLI::App& app) -> Run
    {
        const auto words = Argument<std::vector<std::string>>();
        app.add_option("command", *words, "Command, followed by its subcommand if any");
        return [words, root = app.get_parent()](Context& context) -> Answer
        {
            const CLI::App* command = root;
            for (const std::string& word : *words) command = &CommandIn(*command, word);
            context.out.Text(command->get_formatter()->make_help(command, "", CLI::AppFormatMode::Normal));
            return {};
        };
    };
    return {{"help", "Print the help of a command", "ipodctl help seek\nipodctl help sim battery", build}};
}

Run BuildProgram(CLI::App& app, Options& options, const std::vector<std::string>& arguments)
{
    app.name("ipodctl");
    app.description("Controls the Apple device attached to the head unit, through the iPod service.");
    AddOptions(app, options);
    const std::string chosen = FindVerb(arguments, app);
    const bool needsAll = chosen.empty() || chosen == "help";
    std::vector<Verb> all;
    for (const Subject& subject : Subjects())
        for (const auto verbs : subject.verbs)
            for (Verb verb : verbs())
            {
                verb.group = subject.title;
                if (!needsAll && chosen != verb.name) verb.build = WithoutArguments;
                all.push_back(verb);
            }
    return AddVerbs(app, all);
}

cli::CommandLine CompleteCommandLine()
{
    return [options = std::make_shared<Options>()](CLI::App& app) { BuildProgram(app, *options); };
}
}  // namespace ctl
