#include "loop/guard.h"

#include <QBXLog.h>
#include <glib.h>

#include <cstring>

namespace ipodkit
{
namespace
{
constexpr int kDebug = 20;
constexpr int kWarn = 80;

void Log(int level, const char* function, long line, const std::string& text)
{
    zlog(liblog_category, "ipodkit", std::strlen("ipodkit"), function, std::strlen(function), line, level, "%s",
         text.c_str());
}
}  // namespace

std::string DurationText(std::chrono::steady_clock::duration duration)
{
    const auto tenths = std::chrono::duration_cast<std::chrono::microseconds>(duration).count() / 100;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " ms";
}

void LogDebug(const std::string& text)
{
    if (liblog_category != nullptr) Log(kDebug, __func__, __LINE__, text);
}

void LogWarning(const std::string& text)
{
    if (liblog_category == nullptr)
        g_log("ipodkit", G_LOG_LEVEL_WARNING, "%s", text.c_str());
    else
        Log(kWarn, __func__, __LINE__, text);
}

void Guard::Judge(const std::string& name, std::chrono::steady_clock::duration taken) const
{
    if (taken <= m_budget) return;
    LogWarning("callback '" + name + "' took " + DurationText(taken) + ", over its budget of " +
               DurationText(m_budget));
}

void Guard::LogThrow(const std::string& name, const char* what)
{
    LogWarning("callback '" + name + "' threw: " + what);
}
}  // namespace ipodkit
