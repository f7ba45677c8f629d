// Following the events of the service.
#include <cstring>

#include "follow.h"
#include "verbs.h"

namespace ctl
{
namespace
{
Run BuildEvents(CLI::App& app)
{
    const auto limits = Argument<Limits>();
    const auto noProgress = Argument<bool>();
    AddLimits(app, *limits);
    app.add_flag("--no-progress", *noProgress, "Leave out the progress of playback, also in --count");
    return [limits, noProgress](Context& context)
    {
        const auto wanted = [&](const Event& event)
        { return !*noProgress || std::strcmp(event.name, "progress") != 0; };
        return Follow(context, *limits, wanted);
    };
}
}  // namespace

std::vector<Verb> EventVerbs()
{
    return {{"events", "Follow all events, one line each, until Ctrl-C",
             "ipodctl events\nipodctl events --no-progress --timeout 60\nipodctl events --json --count 1",
             BuildEvents}};
}
}  // namespace ctl
