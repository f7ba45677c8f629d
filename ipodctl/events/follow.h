/// @file
/// Follows events, also over restarts of the service: presents them one by one until enough have come.
#pragma once

#include "events/events.h"
#include "session/context.h"

namespace ctl
{
/// When to end.
struct Limits
{
    int count = 0;       ///< events to wait for, 0 for no limit
    double seconds = 0;  ///< time limit, 0 for none
    std::string until;   ///< the name of the event that is the last one; empty for none
};

struct Following
{
    Limits limits;
    std::function<bool(const Event&)> wanted = [](const Event&) { return true; };
    std::string format;   ///< a template to show each event by; empty for the usual line
    std::string command;  ///< to run for each event in place of showing it; empty for none
    bool wait = false;    ///< whether the service may come later
};

/// Presents every event that is wanted.
/// @throws Failure  kNothingDone, when the time was up before the count or the last event was reached
Answer Follow(Context& context, const Following& following);
}  // namespace ctl
