// Starts the full-screen browser.
#include "verbs/verbs.h"

#ifdef IPODCTL_BROWSES
#include <glib.h>

#include <cstdio>
#include <mutex>
#include <set>

#include "browse/browser.h"
#include "browse/screen.h"
#include "output/text.h"
#endif

namespace ctl
{
namespace
{
#ifdef IPODCTL_BROWSES
constexpr char kSummary[] = "Browse the music database full-screen";

constexpr std::size_t kMaxMessages = 20;

std::mutex access;
std::set<std::string> kept;

// Worker threads of the library log, too.
void Capture(const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer)
{
    if ((level & (G_LOG_LEVEL_INFO | G_LOG_LEVEL_DEBUG)) != 0) return;
    const std::lock_guard<std::mutex> lock(access);
    if (kept.size() < kMaxMessages) kept.insert(std::string(domain == nullptr ? "" : domain) + ": " + message);
}
// Collects GLib's warnings of the whole process, without duplicates and at most 20, and prints them to standard error
// on destruction. They would disturb the screen.
class LogCapture
{
public:
    LogCapture() { g_log_set_default_handler(Capture, nullptr); }
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
};

LogCapture::~LogCapture()
{
    g_log_set_default_handler(g_log_default_handler, nullptr);
    const std::lock_guard<std::mutex> lock(access);
    for (const std::string& message : kept) std::fprintf(stderr, "%s\n", Printable(message).c_str());
    kept.clear();
}

Answer Browse(Context& context)
{
    if (context.out.json())
        throw Failure(kUsage, "--json cannot be used with browse", "list a level with 'ipodctl ls --json'");
    browse::RequireTerminal();
    const LogCapture messages;
    const SuspendSignal suspend;
    ipodkit::Session& kit = context.session.Kit();
    context.session.HoldLevel(ipodkit::Browsing::Changing);
    browse::Screen screen(context.out.color());
    browse::Browser(kit, screen, suspend).Run();
    return {};
}
#else
constexpr char kSummary[] = "Browse the music database (missing in this build)";

Answer Browse(Context&)
{
    throw Failure(kUsage, "this ipodctl was built without the browser, which requires ncurses",
                  "use 'ipodctl ls' and 'ipodctl cd' instead");
}
#endif

Run BuildBrowse(CLI::App&)
{
    return Browse;
}
}  // namespace

std::vector<Verb> BrowserVerbs()
{
    return {{"browse", kSummary, "ipodctl browse   # type zmx to jump to 周明轩; press ? for all keys", BuildBrowse}};
}
}  // namespace ctl
