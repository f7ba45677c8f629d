#include "cli/program.h"

#include <glib.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>

#include "cli/help.h"
#include "cli/text.h"

namespace cli
{
namespace
{
constexpr int kFailed = 1;
constexpr int kUsage = 2;

// Prints what was requested, or an error with a hint.
int Report(const CLI::App& app, const CLI::ParseError& error, const Nearest& nearest)
{
    if (AsksForHelp(app, error))
    {
        app.exit(error);
        return FlushOutput(app.get_name());
    }
    const UsageError usage = Explain(app, error, nearest);
    PrintError(app.get_name(), usage.message + "\nhint: " + usage.hint);
    return kUsage;
}
}  // namespace

void Prepare(CLI::App& app, const char* name, const char* summary)
{
    app.name(name);
    app.description(summary);
    FormatHelp(app);
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.set_version_flag("--version", std::string(name) + " " IPOD_VERSION, "Print the version and exit");
}

void PrintError(const std::string& program, const std::string& message)
{
    std::fprintf(stderr, "%s: %s\n", program.c_str(), PrintableWithHint(message).c_str());
}

int FlushOutput(const std::string& program)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return 0;
    PrintError(program, std::string("cannot write to standard output: ") + g_strerror(errno));
    return kFailed;
}

int RunProgram(int argc, char** argv, const CommandLine& commandLine, const std::function<int()>& run,
               const Nearest& nearest)
{
    CLI::App app;
    commandLine(app);
    try
    {
        app.parse(argc, argv);
        return run();
    }
    catch (const CLI::ParseError& error)
    {
        return Report(app, error, nearest);
    }
    catch (const std::exception& error)
    {
        PrintError(app.get_name(), error.what());
        return kFailed;
    }
}
}  // namespace cli
