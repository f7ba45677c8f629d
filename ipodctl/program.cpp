#include "program.h"

#include <cli/help.h>
#include <cli/usage.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sstream>

#include "output/text.h"
#include "verbs/complete.h"
#include "verbs/usage.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
// Prints the failure on standard error and, with --json, also as a JSON object on standard output.
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
    Output out(options.json, options.colors);
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
    CLI::App app;
    cli::FormatHelp(app, std::min(Output(false).width(), cli::kHelpWidth));
    const Run run = BuildProgram(app, options, {argv + std::min(1, argc), argv + argc});
    try
    {
        app.parse(ToParse(argc, argv, app));
    }
    catch (const CLI::ParseError& error)
    {
        if (cli::AsksForHelp(app, error)) return ShowHelp(app, error);
        throw UsageFailure(app, error);
    }
    return RunVerb(run, options);
}

// Runs a command and returns its answer, which completes another command.
Json Ask(std::vector<std::string> words)
{
    constexpr double kPatience = 1;
    CLI::App app;
    Options options;
    options.settings.deadline = kPatience;
    const Run run = BuildProgram(app, options, words);
    std::reverse(words.begin(), words.end());
    app.parse(words);
    Output out(true);
    Session session(options.settings);
    Context context{session, out};
    return run(context).json;
}

// Hidden command for shells: "ipodctl complete WORD... PREFIX" prints all candidates; the shell filters them by PREFIX.
int Complete(const std::vector<std::string>& words)
{
    CLI::App app;
    Options options;
    BuildProgram(app, options);
    Output(false).Text(ToText(Candidates(app, words, Ask)));
    return kDone;
}

int RunCommandLine(int argc, char** argv)
{
    Options options;
    // Detect --json before parsing, so that usage errors are reported as JSON too.
    options.json = std::find(argv, argv + argc, std::string("--json")) != argv + argc;
    try
    {
        if (argc > 1 && argv[1] == std::string("complete")) return Complete({argv + 2, argv + argc});
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

// Opens closed standard descriptors, which the next open() would reuse otherwise. They are read-only, so writes still
// fail.
void OpenStandardStreams()
{
    int opened = 0;
    while (opened >= 0 && opened <= STDERR_FILENO) opened = open("/dev/null", O_RDONLY);
    if (opened > STDERR_FILENO) close(opened);
}
}  // namespace

int Main(int argc, char** argv)
{
    OpenStandardStreams();
    ReserveStandardOutput();
    std::signal(SIGPIPE, SIG_IGN);
    return RunCommandLine(argc, argv);
}
}  // namespace ctl
