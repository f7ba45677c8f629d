// Stand-in for the log sink and its set-up, for systems without zlog.
#include <QBXLog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>
#include <string>

struct zlog_category_s
{
    int threshold = 0;
    std::FILE* out = nullptr;
};

zlog_category_t* liblog_category = nullptr;

namespace
{
struct Level
{
    int number;
    const char* name;
};

constexpr Level kLevels[] = {{20, "DEBUG"}, {40, "INFO"}, {60, "NOTICE"}, {80, "WARN"}, {100, "ERROR"}, {120, "FATAL"}};

zlog_category_t fileCategory;
std::mutex writing;

const char* NameOf(int level)
{
    for (const Level& known : kLevels)
        if (known.number == level) return known.name;
    return "?";
}

int NumberOf(const std::string& name)
{
    for (const Level& known : kLevels)
        if (name == known.name) return known.number;
    return -1;
}

void CloseOutput()
{
    if (fileCategory.out != nullptr && fileCategory.out != stderr) std::fclose(fileCategory.out);
    fileCategory.out = nullptr;
}

// "2026-11-21 10:15:02.123"
void FormatTime(char (&text)[32])
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    const std::size_t length = std::strftime(text, sizeof(text), "%F %T", &local);
    std::snprintf(text + length, sizeof(text) - length, ".%03d", static_cast<int>(now.tv_nsec / 1000000));
}

// The environment may switch logging on for programs that do not do it themselves.
[[gnu::constructor]] void InitFromEnvironment()
{
    const char* config = std::getenv("QBX_LOG");
    if (config != nullptr && QBX_LogInit(config) == 0)
        std::fprintf(stderr, "QBX_LOG=%s: expected LEVEL or LEVEL:FILE with a level of DEBUG, INFO, WARN, ERROR\n",
                     config);
}
}  // namespace

int QBX_LogInit(const char* config)
{
    const std::string text = config == nullptr ? "" : config;
    const std::size_t colon = text.find(':');
    const int threshold = NumberOf(text.substr(0, colon));
    if (threshold < 0) return 0;
    std::FILE* out = colon == std::string::npos ? stderr : std::fopen(text.c_str() + colon + 1, "ae");
    if (out == nullptr) return 0;
    const std::lock_guard<std::mutex> lock(writing);
    CloseOutput();
    fileCategory.threshold = threshold;
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
    const std::lock_guard<std::mutex> lock(writing);
    if (target->out == nullptr || level < target->threshold) return;
    char time[32];
    FormatTime(time);
    std::fprintf(target->out, "%s %-5s %.*s %.*s:%ld ", time, NameOf(level), static_cast<int>(filelen), file,
                 static_cast<int>(funclen), func, line);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(target->out, format, arguments);
    va_end(arguments);
    std::fputc('\n', target->out);
    std::fflush(target->out);
}
