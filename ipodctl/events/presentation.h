/// @file
/// What becomes of an event: a line, a line of an own format, or a run of a command.
#pragma once

#include <ipodkit/player_state.h>

#include <memory>

#include "events/events.h"
#include "session/loop.h"

namespace ctl
{
class Presentation
{
public:
    virtual ~Presentation() = default;

    /// The player's state afresh, when the service has appeared.
    virtual void Begin(const ipodkit::PlayerState&) {}

    /// @param wanted  whether it is to be presented; otherwise it is only learned from
    virtual void Take(const Event& event, bool wanted) = 0;

    /// Whether nothing of what was taken is still to be done.
    virtual bool IsDone() const { return true; }

    /// Nothing of it is begun any more.
    virtual void Drop() {}

    /// The same, and what is being done is to end: it is passed the signal that ended this program.
    virtual void Stop(int) {}
};

/// A line of the usual form; on a terminal, progress is a bar that stays in its line.
std::unique_ptr<Presentation> UsualLines(Output& out);

/// A line by a template.
/// @throws Failure  kUsage, when there is something wrong with the template
std::unique_ptr<Presentation> FormattedLines(Output& out, const std::string& format);

/// One run of a shell command after the other, with the fields in its environment and the event as JSON on its
/// standard input.
/// @param loop  finished when all runs have ended that were waiting
std::unique_ptr<Presentation> CommandRuns(Loop& loop, const std::string& command);
}  // namespace ctl
