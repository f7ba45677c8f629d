// ipodctl: the iPod service from the command line.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sstream>

#include "output/text.h"
#include "verbs/command_line.h"
#include "verbs/help.h"
#include "verbs/usage.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr int kWidthOfHelp = 80;

constexpr char kExitCodes[] =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the service refused, or there was nothing to do (such as next at the end)\n"
    "  2  usage: unknown command, index out of range, name not found, file not usable\n"
    "  3  no session bus\n"
    "  4  no iPod service on the bus\n"
    "  5  shared memory cannot be attached or written\n"
    "  6  the service went away, did not answer, or sent something broken\n"
    "  7  the output cannot be written (such as a full disk)\n"
    "  130  interrupted\n"
    "\n"
    "Run 'ipodctl COMMAND --help' for the arguments and examples of a command.\n"
    "Environment: DBUS_SESSION_BUS_ADDRESS (the bus), NO_COLOR (no colors),\n"
    "QBX_LOG (what to log: LEVEL or LEVEL:FILE, such as DEBUG:/tmp/log),\n"
    "QBX_SOURCE_REFUSE (code with which the stand-in for audio sources refuses).";

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
    app.add_flag("--json", options.json, "Print JSON, one object per line (ipodctl.schema.json)");
    app.add_flag("--verbose", options.settings.verbose, "Print every request and the library's log on standard error");
    app.add_option("--deadline", options.settings.deadline,
                   "Time that the service may take for an answer (default: 10)")
        ->check(Seconds(86400));
    app.set_version_flag("--version", "ipodctl " IPODCTL_VERSION, "Print the version and exit");
    app.footer(kExitCodes);
}

// Once on standard error for people; and as the answer, where one object per answer was asked for.
int Report(const Options& options, const Failure& failure)
{
    std::fprintf(stderr, "ipodctl: %s\n", Printable(failure.what()).c_str());
    if (!failure.hint().empty()) std::fprintf(stderr, "hint: %s\n", Printable(failure.hint()).c_str());
    Json error{{"code", failure.code()}, {"message", failure.what()}};
    if (!failure.hint().empty()) error["hint"] = failure.hint();
    const std::string line = Dump({{"error", error}});
    if (options.json) std::fprintf(AnswerStream(), "%s\n", line.c_str());
    return failure.code();
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

int ShowHelp(const CLI::App& app, const CLI::ParseError& error)
{
    std::ostringstream text;
    const int code = app.exit(error, text, text);
    Output(false).Text(text.str());
    return code;
}

int Execute(int argc, char** argv, Options& options)
{
    CLI::App app("Controls the Apple device attached to the head unit, through the iPod service.", "ipodctl");
    app.formatter(std::make_shared<HelpFormatter>(std::min(Output(false).width(), kWidthOfHelp)));
    app.set_help_flag("-h,--help", "Print this help and exit");
    AddOptions(app, options);
    const std::vector<Verb> verbs = AllVerbs();
    const Run run = AddVerbs(app, verbs);
    try
    {
        app.parse(ToParse(argc, argv, verbs));
    }
    catch (const CLI::ParseError& error)
    {
        if (AsksForHelp(app, error)) return ShowHelp(app, error);
        throw UsageFailure(app, error);
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
        return Report(options, failure);
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
