/// @file
/// Follows events, also over restarts of the service: presents them one by one until enough have come.
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
