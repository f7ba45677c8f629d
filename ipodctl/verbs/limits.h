/// @file
/// The options with which a verb that follows events is told when to end.
#pragma once

#include <CLI/CLI.hpp>

#include "events/follow.h"

namespace ctl
{
/// Adds --count and --timeout.
void AddLimits(CLI::App& app, Limits& limits);
}  // namespace ctl
