// Stand-in for the log sink and its setup, for systems without zlog.
#include <QBXLog.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>

#include "log_config.h"

struct zlog_category_s
{
    // Read without the lock, because most lines are below the level.
    std::atomic<int> threshold{0};
    int out = -1;
};

zlog_category_t* liblog_category = nullptr;

namespace
{
using Text = std::unique_ptr<char, decltype(&std::free)>;

zlog_category_t fileCategory;
std::mutex writing;

const char* NameOf(int level)
{
    for (const LogLevel& known : kLogLevels)
        if (known.number == level) return known.name;
    return "?";
}

void CloseOutput()
{
    if (fileCategory.out > STDERR_FILENO) close(fileCategory.out);
    fileCategory.out = -1;
}

// Null if out of memory.
[[gnu::format(printf, 1, 0)]] Text Format(const char* format, va_list arguments)
{
    char* text = nullptr;
    return {vasprintf(&text, format, arguments) < 0 ? nullptr : text, std::free};
}

// Written in one piece, so that lines of several processes do not mix in one file. A line that cannot be written is
// lost: there is nowhere to report it.
[[gnu::format(printf, 2, 3)]] void WriteLine(int out, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const Text line = Format(format, arguments);
    va_end(arguments);
    if (line == nullptr) return;
    const ssize_t written = write(out, line.get(), std::strlen(line.get()));
    static_cast<void>(written);
}
}  // namespace

int QBX_LogInit(const char* config)
{
    const std::optional<LogConfig> parsed = ParseLogConfig(config == nullptr ? "" : config);
    errno = EINVAL;
    const int out = parsed ? parsed->Open() : -1;
    if (out < 0) return 0;
    const std::lock_guard<std::mutex> lock(writing);
    CloseOutput();
    fileCategory.threshold = parsed->level.number;
    fileCategory.out = out;
    liblog_category = &fileCategory;
    return 1;
}

void QBX_LogExit(void)
{
    const std::lock_guard<std::mutex> lock(writing);
    liblog_category = nullptr;
    CloseOutput();
}

void zlog(zlog_category_t* target, const char* file, size_t filelen, const char* func, size_t funclen, long line,
          int level, const char* format, ...)
{
    if (level < target->threshold) return;
    va_list arguments;
    va_start(arguments, format);
    const Text message = Format(format, arguments);
    va_end(arguments);
    if (message == nullptr) return;
    const std::lock_guard<std::mutex> lock(writing);
    if (target->out < 0) return;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char date[32];
    std::strftime(date, sizeof(date), "%F %T", &local);
    WriteLine(target->out, "%s.%03ld %-5s %.*s %.*s:%ld %s\n", date, now.tv_nsec / 1000000, NameOf(level),
              static_cast<int>(filelen), file, static_cast<int>(funclen), func, line, message.get());
}
