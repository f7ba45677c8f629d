/// @file
/// Follows events across restarts of the service and presents each one until a limit is reached.
#pragma once

#include <ipodkit/player_state.h>

#include <memory>

#include "events/events.h"
#include "session/loop.h"
#include "session/session.h"

namespace ctl
{
class Presentation
{
public:
    virtual ~Presentation() = default;

    /// Called with the current player state whenever the service becomes ready.
    virtual void Begin(const ipodkit::PlayerState&) {}

    /// Processes one event.
    /// @param wanted  whether to present the event; otherwise it only updates the player fields
    virtual void Take(const Event& event, bool wanted) = 0;

    /// Returns whether all events passed to Take() have been processed.
    virtual bool IsDone() const { return true; }

    /// Discards work that has not been started.
    virtual void Drop() {}

    /// Discards pending work and ends running work with the signal that interrupted ipodctl.
    virtual void Stop(int) {}
};

/// Prints each event in the default format. On a terminal, progress events update a bar in place.
std::unique_ptr<Presentation> DefaultLines(Output& out);

/// Formats each event with a template.
/// @throws Failure  kUsage if the template is invalid
std::unique_ptr<Presentation> FormattedLines(Output& out, const std::string& format);

/// Runs a shell command for each event, one at a time, with the fields in its environment and the event as JSON on its
/// standard input.
/// @param loop  finished when the last queued command has exited
std::unique_ptr<Presentation> CommandRuns(Loop& loop, const std::string& command);

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
