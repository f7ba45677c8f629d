// Replaces the browse verb in builds without the browser.
#include "verbs/verbs.h"

namespace ctl
{
std::vector<Verb> BrowserVerbs()
{
    const auto build = [](CLI::App&) -> Run
    {
        return [](Context&) -> Answer
        {
            throw Failure(kUsage,
                          "this ipodctl was built without the browser, which needs ncurses and ipodkit; "
                          "ipodctl ls and ipodctl cd walk through the database too");
        };
    };
    return {{"browse", "Browse the music database (missing in this build)", "ipodctl browse", build}};
}
}  // namespace ctl
