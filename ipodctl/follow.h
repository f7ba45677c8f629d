/// @file
/// Follows events: shows them one by one until enough have come.
#pragma once

#include "events.h"
#include "verb.h"

namespace ctl
{
struct Limits
{
    int count = 0;       ///< events to wait for, 0 for no limit
    double seconds = 0;  ///< time limit, 0 for none
};

/// Adds --count and --timeout.
void AddLimits(CLI::App& app, Limits& limits);

/// Shows every event for which @p wanted is true.
/// @throws Failure  kNothingDone, when the time was up before the count was reached
Answer Follow(Context& context, const Limits& limits, const std::function<bool(const Event&)>& wanted);
}  // namespace ctl
