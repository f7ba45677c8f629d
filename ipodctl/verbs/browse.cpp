#include "browse/browser.h"
#include "browse/log_capture.h"
#include "browse/screen.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
Answer Browse(Session& session)
{
    const browse::LogCapture messages;
    const SuspendSignal suspend;
    ipodkit::Session& kit = session.Kit();
    session.HoldLevel(ipodkit::Browsing::Changing);
    browse::Screen screen;
    browse::Browser(kit, screen, suspend).Run();
    return {};
}

Run BuildBrowse(CLI::App&)
{
    return [](Context& context)
    {
        if (context.out.json())
            throw Failure(kUsage, "--json cannot be used with browse", "list a level with 'ipodctl ls --json'");
        browse::RequireTerminal();
        return Browse(context.session);
    };
}
}  // namespace

std::vector<Verb> BrowserVerbs()
{
    return {{"browse", "Browse the music database full-screen",
             "ipodctl browse   # type zmx to jump to 周明轩; press ? for all keys", BuildBrowse}};
}
}  // namespace ctl
