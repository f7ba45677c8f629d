// ipodctl: the iPod service from the command line.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sstream>

#include "output/text.h"
#include "verbs/command_line.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr char kExitCodes[] =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the service refused, or there was nothing to do (such as next at the end)\n"
    "  2  usage: unknown verb, index out of range, name not found, file not usable\n"
    "  3  no session bus\n"
    "  4  no iPod service on the bus\n"
    "  5  shared memory cannot be attached or written\n"
    "  6  the service went away, did not answer, or sent something broken\n"
    "  130  interrupted\n"
    "\n"
    "ipodctl VERB --help shows the arguments and examples of a verb.\n"
    "Environment: DBUS_SESSION_BUS_ADDRESS (the bus), NO_COLOR (no colours),\n"
    "QBX_LOG (what to log: LEVEL or LEVEL:FILE, such as DEBUG:/tmp/log),\n"
    "QBX_SOURCE_REFUSE (the stand-in for the unit's audio sources refuses with this code).";

std::vector<Verb> AllVerbs()
{
    std::vector<Verb> all;
    for (const auto verbs :
         {StatusVerbs, TransportVerbs, ModeVerbs, ListVerbs, BrowseVerbs, BrowserVerbs, QueueVerbs, DeviceVerbs,
          ArtVerbs, EventVerbs, EapVerbs, SimVerbs, SharedMemoryVerbs, BenchVerbs, DoctorVerbs, LayoutVerbs})
        for (const Verb& verb : verbs()) all.push_back(verb);
    return all;
}

struct Options
{
    bool json = false;
    Settings settings;
};

void AddOptions(CLI::App& app, Options& options)
{
    app.add_flag("--json", options.json, "Answer with one JSON object, events with one per line (ipodctl.schema.json)");
    app.add_flag("--verbose", options.settings.verbose,
                 "Show every request and what the library logs, on standard error");
    app.add_option("--deadline", options.settings.deadline, "Seconds that the service may take for an answer (10)")
        ->check(Seconds(86400));
    app.set_version_flag("--version", "ipodctl " IPODCTL_VERSION);
    app.footer(kExitCodes);
}

// Once on standard error for people; and as the answer, where one object per answer was asked for.
int Report(const Options& options, ExitCode code, const std::string& message)
{
    std::fprintf(stderr, "ipodctl: %s\n", Printable(message).c_str());
    const std::string line = Dump({{"error", {{"code", code}, {"message", message}}}});
    if (options.json) std::fprintf(AnswerStream(), "%s\n", line.c_str());
    return code;
}

int RunVerb(const Run& run, const Options& options)
{
    Output out(options.json);
    Session session(options.settings);
    Context context{session, out};
    const Answer answer = run(context);
    if (!answer.json.is_null()) out.Line(answer.json, answer.text);
    return answer.code;
}

// With the verbs that the command line named.
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

bool WantsVerb(const CLI::App& app)
{
    return !Chosen(app).get_subcommands([](const CLI::App*) { return true; }).empty();
}

// That something is missing says little where something else was given in its place.
std::string Complaint(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    const bool missing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (unknown.empty() && missing && WantsVerb(app)) return "no verb is given";
    if (unknown.empty() || !(missing || error.get_exit_code() == 0)) return error.what();
    return (unknown.front().front() == '-' ? "unknown option '" : "unknown verb '") + unknown.front() + "'";
}

int ShowHelp(const CLI::App& app, const CLI::ParseError& error)
{
    std::ostringstream text;
    const int code = app.exit(error, text, text);
    Output(false).Text(text.str());
    return code;
}

// Help and version are "errors" with code 0 to the parser. Help for a verb that there is not is not that of all verbs.
int ReportParsing(const CLI::App& app, const CLI::ParseError& error, const Options& options)
{
    const bool wrongVerb = WantsVerb(app) && !app.remaining(true).empty();
    if (error.get_exit_code() == 0 && !wrongVerb) return ShowHelp(app, error);
    return Report(options, kUsage, Complaint(app, error) + "; " + CommandOf(app) + " --help shows the usage");
}

int Execute(int argc, char** argv, Options& options)
{
    CLI::App app("Controls the Apple device attached to the unit, through the iPod service.", "ipodctl");
    AddOptions(app, options);
    const std::vector<Verb> verbs = AllVerbs();
    const Run run = AddVerbs(app, verbs);
    try
    {
        app.parse(ToParse(argc, argv, verbs));
    }
    catch (const CLI::ParseError& error)
    {
        return ReportParsing(app, error, options);
    }
    return RunVerb(run, options);
}

int Main(int argc, char** argv)
{
    Options options;
    // Also when the rest of the command line turns out to be wrong.
    options.json = std::find(argv, argv + argc, std::string("--json")) != argv + argc;
    try
    {
        return Execute(argc, argv, options);
    }
    catch (const Failure& failure)
    {
        return Report(options, failure.code(), failure.what());
    }
    catch (const OutputClosed&)
    {
        return kDone;
    }
    catch (const Interrupted&)
    {
        return kInterrupted;
    }
}

// A descriptor that is closed would be taken by the next file that is opened. What is written there still fails.
void OpenStandardStreams()
{
    int opened = 0;
    while (opened >= 0 && opened <= STDERR_FILENO) opened = open("/dev/null", O_RDONLY);
    if (opened > STDERR_FILENO) close(opened);
}
}  // namespace
}  // namespace ctl

int main(int argc, char** argv)
{
    ctl::OpenStandardStreams();
    ctl::ReserveStandardOutput();
    std::signal(SIGPIPE, SIG_IGN);
    return ctl::Main(argc, argv);
}
