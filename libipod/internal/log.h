/// @file
/// Log sites. Each one writes a record when logging is set up, and one warning line to standard output when not.
#pragma once

#include <QBXLog.h>

#include <cstddef>

namespace qbx
{
/// zlog's numbering.
enum LogLevel : int
{
    kDebug = 20,
    kInfo = 40,
    kWarn = 80,
    kError = 100,
};

/// Every record of the client carries this file text, whichever unit writes it: log filters rely on it.
constexpr char kLogFile[] = "libipod/QBXIpod_MediaPlayer_Client";
constexpr std::size_t kLogFileLength = sizeof(kLogFile) - 1;

/// Where a record comes from: the public operation, even when a helper writes the record for it.
struct LogSite
{
    const char* function;
    std::size_t functionLength;
    long line;
};

/// The line that takes a record's place while logging is not set up.
void WarnLogNotReady(const LogSite& site);
}  // namespace qbx

#define LOG_SITE                                 \
    qbx::LogSite                                 \
    {                                            \
        __func__, sizeof(__func__) - 1, __LINE__ \
    }

// A macro, because zlog() takes its arguments as they come and the compiler checks them against the format.
#define LOG_AT(site, level, ...)                                                                            \
    do                                                                                                      \
    {                                                                                                       \
        const qbx::LogSite& logSite = (site);                                                               \
        if (zlog_category_t* logCategory = liblog_category)                                                 \
            zlog(logCategory, qbx::kLogFile, qbx::kLogFileLength, logSite.function, logSite.functionLength, \
                 logSite.line, level, __VA_ARGS__);                                                         \
        else                                                                                                \
            qbx::WarnLogNotReady(logSite);                                                                  \
    } while (false)

#define LOG_DEBUG(...) LOG_AT(LOG_SITE, qbx::kDebug, __VA_ARGS__)
#define LOG_INFO(...) LOG_AT(LOG_SITE, qbx::kInfo, __VA_ARGS__)
#define LOG_WARN(...) LOG_AT(LOG_SITE, qbx::kWarn, __VA_ARGS__)
#define LOG_ERROR(...) LOG_AT(LOG_SITE, qbx::kError, __VA_ARGS__)
