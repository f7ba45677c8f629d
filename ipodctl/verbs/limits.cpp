#include "verbs/limits.h"

#include "verbs/verb.h"

namespace ctl
{
void AddLimits(CLI::App& app, Limits& limits)
{
    app.add_option("--count", limits.count, "End after so many events")->check(WholeNumber(1));
    app.add_option("--timeout", limits.seconds,
                   "End after so many seconds; exit code 1 if --count or --until was not reached")
        ->check(CLI::PositiveNumber);
}
}  // namespace ctl
