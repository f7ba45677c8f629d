#include "verbs/limits.h"

#include "verbs/verb.h"

namespace ctl
{
void AddLimits(CLI::App& app, Limits& limits, const std::string& goal)
{
    app.add_option("--count", limits.count, "End after this many events")->check(WholeNumber(1));
    app.add_option("--timeout", limits.seconds, "End after this long, with exit code 1 if " + goal + " was not reached")
        ->check(Seconds());
}
}  // namespace ctl
