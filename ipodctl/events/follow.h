/// @file
/// Follows events across restarts of the service and presents each one until a limit is reached.
#pragma once

#include <functional>
#include <string>

#include "events/events.h"
#include "session/session.h"

namespace ctl
{
/// When to stop following events.
struct Limits
{
    int count = 0;       ///< events to wait for, 0 for no limit
    double seconds = 0;  ///< time limit, 0 for none
    std::string until;   ///< name of the event to stop after; empty for none
};

struct Following
{
    Limits limits;
    std::function<bool(const Event&)> wanted = [](const Event&) { return true; };
    std::string format;   ///< template for each event; empty for the default line
    std::string command;  ///< shell command to run for each event instead of printing it; empty for none
    bool wait = false;    ///< whether to wait for a service that is not running yet
};

/// Presents the wanted events. Blocks until a limit is reached or the user interrupts.
/// @throws Failure  kNothingDone if the time limit expires before Limits::count or Limits::until is reached
Answer Follow(Context& context, const Following& following);
}  // namespace ctl
