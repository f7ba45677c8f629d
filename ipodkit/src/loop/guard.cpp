#include "loop/guard.h"

#include <QBXLog.h>
#include <glib.h>

#include <cstring>

namespace ipodkit
{
namespace
{
constexpr int kWarn = 80;

std::string Milliseconds(std::chrono::steady_clock::duration duration)
{
    const auto tenths = std::chrono::duration_cast<std::chrono::microseconds>(duration).count() / 100;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " ms";
}
}  // namespace

void LogWarning(const std::string& text)
{
    if (liblog_category == nullptr)
        g_log("ipodkit", G_LOG_LEVEL_WARNING, "%s", text.c_str());
    else
        zlog(liblog_category, "ipodkit", std::strlen("ipodkit"), __func__, std::strlen(__func__), __LINE__, kWarn, "%s",
             text.c_str());
}

void Guard::Judge(const std::string& name, std::chrono::steady_clock::duration taken) const
{
    if (taken <= m_budget) return;
    LogWarning("callback '" + name + "' took " + Milliseconds(taken) + ", its budget is " + Milliseconds(m_budget));
}

void Guard::LogThrow(const std::string& name, const char* what)
{
    LogWarning("callback '" + name + "' threw: " + what);
}
}  // namespace ipodkit
