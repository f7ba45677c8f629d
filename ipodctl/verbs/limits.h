/// @file
/// Options that limit how long a verb follows events.
#pragma once

#include "events/follow.h"
#include "verbs/verb.h"

namespace ctl
{
/// Adds --count and --timeout.
/// @param goal  the options that define the goal, named in the help of --timeout
inline void AddLimits(CLI::App& app, Limits& limits, const std::string& goal)
{
    app.add_option("--count", limits.count, "End after this many events")->check(WholeNumber(1));
    app.add_option("--timeout", limits.seconds, "End after this long, with exit code 1 if " + goal + " was not reached")
        ->check(Seconds());
}
}  // namespace ctl
