/// @file
/// Log sites. Each one writes a record if logging is set up, and otherwise one warning line to standard output.
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

/// Every record of the client carries this file name, whichever source writes it: log filters rely on it.
constexpr char kLogFile[] = "libipod/QBXIpod_MediaPlayer_Client";
constexpr std::size_t kLogFileLength = sizeof(kLogFile) - 1;

/// Origin of a record: the public operation, even if a helper writes the record.
struct LogSite
{
    const char* function;
    std::size_t functionLength;
    long line;
};

/// Writes the line that replaces a record while logging is not set up.
void WarnLogNotReady(const LogSite& site);
}  // namespace qbx

#define LOG_SITE                                 \
    qbx::LogSite                                 \
    {                                            \
        __func__, sizeof(__func__) - 1, __LINE__ \
    }

// A macro, because zlog() is variadic and the compiler checks its arguments against the format.
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
