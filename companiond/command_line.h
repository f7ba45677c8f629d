/// @file
/// The command line of ipod-companiond.
#pragma once

#include <cli/help.h>
#include <cli/program.h>

#include <vector>

namespace companion
{
constexpr char kProgram[] = "ipod-companiond";

enum ExitCode
{
    kDone = 0,
    kNoOutput = 1,
    kUsage = 2,
    kNoBus = 3,
    kAlreadyRunning = 4,
};

/// The exit codes, for the help and the manual page.
std::vector<cli::HelpRow> ExitCodes();

/// The command line, which sets @p printInterface.
cli::CommandLine CommandLineOf(bool& printInterface);
}  // namespace companion
