#include "command_line.h"

#include <cli/program.h>

#include <CLI/CLI.hpp>

namespace companion
{
std::vector<cli::HelpRow> ExitCodes()
{
    return {
        {std::to_string(kDone), "ended by a signal"},
        {std::to_string(kNoOutput), "standard output cannot be written"},
        {std::to_string(kUsage), "invalid option or argument"},
        {std::to_string(kNoBus), "no session bus, or the bus closed the connection"},
        {std::to_string(kAlreadyRunning), "another program owns one of the names, usually another ipod-companiond"}};
}

cli::CommandLine CommandLineOf(bool& printInterface)
{
    return [&printInterface](CLI::App& app)
    {
        cli::Prepare(
            app, kProgram,
            "Makes the attached Apple device available to media controls, and its state to all programs, on the "
            "session bus.");
        app.add_flag("--print-interface", printInterface,
                     "Print the description of com.zarn.linux.ipod.State and exit");
        app.footer(cli::ExitCodeSection(ExitCodes()));
    };
}
}  // namespace companion
