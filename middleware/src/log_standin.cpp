// Stand-in for the log sink and its set-up, for systems without zlog.
#include <QBXLog.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>
#include <string>

struct zlog_category_s
{
    // Read without the lock: most lines are below it.
    std::atomic<int> threshold{0};
    int out = -1;
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
    if (fileCategory.out > STDERR_FILENO) close(fileCategory.out);
    fileCategory.out = -1;
}

// "2026-11-21 10:15:02". Most lines share their second with the one before.
const char* DateAndTime(std::time_t now)
{
    static std::time_t formatted = -1;
    static char text[32];
    if (now == formatted) return text;
    tm local{};
    localtime_r(&now, &local);
    std::strftime(text, sizeof(text), "%F %T", &local);
    formatted = now;
    return text;
}

void AppendTime(std::string& line)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::string milliseconds = std::to_string(1000 + now.tv_nsec / 1000000);
    line.append(DateAndTime(now.tv_sec)).append(1, '.').append(milliseconds, 1, 3);
}

void AppendLevel(std::string& line, int level)
{
    const std::string name = NameOf(level);
    line.append(1, ' ').append(name).append(name.size() < 5 ? 6 - name.size() : 1, ' ');
}

void AppendMessage(std::string& line, const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    char text[256];
    const int length = std::vsnprintf(text, sizeof(text), format, arguments);
    const std::size_t size = length < 0 ? 0 : static_cast<std::size_t>(length);
    if (size < sizeof(text))
        line.append(text, size);
    else
    {
        line.resize(line.size() + size + 1);
        std::vsnprintf(&line[line.size() - size - 1], size + 1, format, again);
        line.pop_back();
    }
    va_end(again);
}

// In one piece, so that the lines of several processes in one file do not mix. A line that cannot be written is lost:
// there is nobody to tell.
void Write(int out, const std::string& line)
{
    const ssize_t written = write(out, line.data(), line.size());
    static_cast<void>(written);
}

// The environment may switch logging on for programs that do not do it themselves.
[[gnu::constructor]] void InitFromEnvironment()
{
    const char* config = std::getenv("QBX_LOG");
    if (config == nullptr || QBX_LogInit(config) != 0) return;
    const char* const why = errno == EINVAL ? "expected LEVEL or LEVEL:FILE with a level of DEBUG, INFO, WARN, ERROR"
                                            : std::strerror(errno);
    std::fprintf(stderr, "QBX_LOG=%s: %s\n", config, why);
}
}  // namespace

int QBX_LogInit(const char* config)
{
    const std::string text = config == nullptr ? "" : config;
    const std::size_t colon = text.find(':');
    const int threshold = NumberOf(text.substr(0, colon));
    if (threshold < 0)
    {
        errno = EINVAL;
        return 0;
    }
    const int out = colon == std::string::npos
                        ? STDERR_FILENO
                        : open(text.c_str() + colon + 1, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (out < 0) return 0;
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
    if (level < target->threshold) return;
    const std::lock_guard<std::mutex> lock(writing);
    if (target->out < 0) return;
    std::string text;
    text.reserve(256);
    AppendTime(text);
    AppendLevel(text, level);
    text.append(file, filelen).append(1, ' ').append(func, funclen).append(1, ':').append(std::to_string(line));
    text.append(1, ' ');
    va_list arguments;
    va_start(arguments, format);
    AppendMessage(text, format, arguments);
    va_end(arguments);
    Write(target->out, text.append(1, '\n'));
}
