#include "support/log_capture.h"

#include <zlog.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace
{
char categoryInNameOnly;
std::mutex writing;
std::vector<test::LogRecord> written;

std::string Format(const char* format, va_list arguments)
{
    char text[4096];
    std::vsnprintf(text, sizeof(text), format, arguments);
    return text;
}

std::string Line(const test::LogRecord& record, const std::string& text)
{
    return std::to_string(record.level) + " " + record.function + ": " + text;
}
}  // namespace

extern "C"
{
    zlog_category_t* liblog_category = reinterpret_cast<zlog_category_t*>(&categoryInNameOnly);

    void zlog(zlog_category_t*, const char* file, size_t filelen, const char* func, size_t funclen, long line,
              int level, const char* format, ...)
    {
        va_list arguments;
        va_start(arguments, format);
        const std::string text = Format(format, arguments);
        va_end(arguments);
        const std::lock_guard<std::mutex> lock(writing);
        written.push_back({level, file, filelen, func, funclen, line, format, text});
    }
}

namespace test
{
std::vector<LogRecord> LogRecords()
{
    const std::lock_guard<std::mutex> lock(writing);
    return written;
}

std::vector<std::string> LogLines()
{
    std::vector<std::string> lines;
    for (const LogRecord& record : LogRecords()) lines.push_back(Line(record, record.text));
    return lines;
}

std::vector<std::string> LogFormats()
{
    std::vector<std::string> lines;
    for (const LogRecord& record : LogRecords()) lines.push_back(Line(record, record.format));
    return lines;
}

void ClearLog()
{
    const std::lock_guard<std::mutex> lock(writing);
    written.clear();
}

void SwitchLoggingOff()
{
    liblog_category = nullptr;
}

std::size_t CountLogLines(const std::string& line)
{
    const std::vector<std::string> lines = LogLines();
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
}
}  // namespace test
