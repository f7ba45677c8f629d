/// @file
/// Builds the command line from the verb tables and dispatches to the selected verb.
#pragma once

#include <string>
#include <vector>

#include "verbs/verb.h"

namespace ctl
{
/// Adds @p verbs to @p app as subcommands.
/// @return  a function that runs the verb selected during parsing
Run AddVerbs(CLI::App& app, const std::vector<Verb>& verbs);

/// Returns the program's arguments as CLI11 expects them: without the program name, in reverse order.
/// @throws Failure  kUsage if @p app has no such command
std::vector<std::string> ToParse(int argc, char** argv, const CLI::App& app);
}  // namespace ctl
