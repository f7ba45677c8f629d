#include "browse/log_capture.h"

#include <glib.h>

#include <cstdio>
#include <mutex>
#include <set>
#include <string>

#include "output/text.h"

namespace ctl::browse
{
namespace
{
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
}  // namespace

LogCapture::LogCapture()
{
    g_log_set_default_handler(Capture, nullptr);
}

LogCapture::~LogCapture()
{
    g_log_set_default_handler(g_log_default_handler, nullptr);
    const std::lock_guard<std::mutex> lock(access);
    for (const std::string& message : kept) std::fprintf(stderr, "%s\n", Printable(message).c_str());
    kept.clear();
}
}  // namespace ctl::browse
