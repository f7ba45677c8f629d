#include "verbs/program.h"

#include "verbs/command_line.h"
#include "verbs/verbs.h"

namespace ctl
{
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
        {"Playback commands", {StatusVerbs, TransportVerbs, ModeVerbs, QueueVerbs, ArtVerbs}},
        {"Browsing commands", {ListVerbs, BrowseVerbs, BrowserVerbs}},
        {"Device commands", {DeviceVerbs, EapVerbs}},
        {"Event commands", {EventVerbs}},
        {"Diagnostic commands", {DoctorVerbs, SharedMemoryVerbs, BenchVerbs, LayoutVerbs}},
        {"Simulator commands", {SimVerbs}}};
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
    app.add_option("--deadline", options.settings.deadline,
                   "Time that the service may take for an answer (default: 10)")
        ->check(Seconds(86400));
    app.set_version_flag("--version", "ipodctl " IPODCTL_VERSION, "Print the version and exit");
    app.footer(Footer());
}
}  // namespace

const std::vector<HelpRow>& ExitCodes()
{
    static const std::vector<HelpRow> codes{
        {"0", "done"},
        {"1", "the service refused, or there was nothing to do (such as next at the end)"},
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
        {"NO_COLOR", "Print no colors if set"},
        {"QBX_LOG", "Log from this level on: LEVEL (to standard error) or LEVEL:FILE, such as DEBUG:/tmp/log"},
        {"QBX_SOURCE_REFUSE", "Code with which the stand-in for audio sources refuses"}};
    return variables;
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
