/// @file
/// The whole command line of ipodctl: from it come the parser, the help, the completions, the manual page, and the
/// reference.
#pragma once

#include <string>
#include <vector>

#include "verbs/help.h"
#include "verbs/verb.h"

namespace ctl
{
/// The options of every command.
struct Options
{
    bool json = false;
    Settings settings;
};

const std::vector<HelpRow>& ExitCodes();
const std::vector<HelpRow>& EnvironmentVariables();

/// Adds the options and commands of ipodctl to a parser without any.
/// @param options  set by the parser; outlives it
/// @return  runs the command that was parsed
Run BuildProgram(CLI::App& app, Options& options);
}  // namespace ctl
