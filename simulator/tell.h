/// @file
/// The subcommand "tell": asks the simulator that runs on the session bus for an event.
#pragma once

#include <CLI/CLI.hpp>

namespace ipodsim
{
/// Adds "tell" and its subcommands. Parsing one of them makes its call at once.
/// @throws std::runtime_error  from the parsing: no simulator runs, or it refused, with its reason
void AddTell(CLI::App& app);
}  // namespace ipodsim
