/// @file
/// The options with which a verb that follows events is told when to end.
#pragma once

#include <CLI/CLI.hpp>

#include "events/follow.h"

namespace ctl
{
/// Adds --count and --timeout.
/// @param goal  the options that may not be reached within the time
void AddLimits(CLI::App& app, Limits& limits, const std::string& goal);
}  // namespace ctl
