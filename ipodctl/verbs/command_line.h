/// @file
/// The command line of ipodctl, for its documents.
#pragma once

#include <cli/help.h>
#include <cli/program.h>

#include <vector>

namespace ctl
{
const std::vector<cli::HelpRow>& ExitCodes();
const std::vector<cli::HelpRow>& EnvironmentVariables();

/// All commands with their arguments.
cli::CommandLine CompleteCommandLine();
}  // namespace ctl
