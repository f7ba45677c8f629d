#include "support/glib_messages.h"

#include <glib.h>

#include <mutex>

namespace test
{
namespace
{
std::mutex writing;
std::vector<std::string> lines;

void Collect(const gchar*, GLogLevelFlags level, const gchar* text, gpointer)
{
    const std::lock_guard<std::mutex> lock(writing);
    if (level & G_LOG_LEVEL_CRITICAL) lines.push_back(std::string("critical: ") + text);
    if (level & G_LOG_LEVEL_WARNING) lines.push_back(std::string("warning: ") + text);
}
}  // namespace

GLibMessages::GLibMessages()
{
    lines.clear();
    g_log_set_default_handler(Collect, nullptr);
}

GLibMessages::~GLibMessages()
{
    g_log_set_default_handler(g_log_default_handler, nullptr);
}

std::vector<std::string> GLibMessages::Lines() const
{
    const std::lock_guard<std::mutex> lock(writing);
    return lines;
}
}  // namespace test
