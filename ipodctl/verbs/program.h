/// @file
/// Defines the complete ipodctl command line, the source of the parser, help, completions, manual page, and reference.
#pragma once

#include <string>
#include <vector>

#include "verbs/help.h"
#include "verbs/verb.h"

namespace ctl
{
/// Options that all commands accept.
struct Options
{
    bool json = false;
    Settings settings;
};

const std::vector<HelpRow>& ExitCodes();
const std::vector<HelpRow>& EnvironmentVariables();

/// Adds the options and commands of ipodctl to an empty parser.
/// @param options  filled during parsing; must outlive @p app
/// @return  a function that runs the parsed command
Run BuildProgram(CLI::App& app, Options& options);
}  // namespace ctl
