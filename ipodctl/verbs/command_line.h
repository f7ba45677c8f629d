/// @file
/// The command line: from the tables of verbs to the one that was asked for.
#pragma once

#include <string>
#include <vector>

#include "verbs/verb.h"

namespace ctl
{
/// Adds verbs to a command line.
/// @return  runs the one that the command line then named
Run AddVerbs(CLI::App& app, const std::vector<Verb>& verbs);

/// The program's arguments as the parser takes them: without the program's name, the last one first.
/// @throws Failure  kUsage, when @p app has no such command
std::vector<std::string> ToParse(int argc, char** argv, const CLI::App& app);
}  // namespace ctl
