// A small zlog: configuration files, categories, and records as zlog documents them.
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>

#include "configuration.h"

#pragma GCC visibility push(default)
#include "zlog.h"
#pragma GCC visibility pop

struct zlog_category_s
{
    std::string name;
};

namespace
{
std::mutex writing;
std::optional<Configuration> configuration;
std::map<std::string, zlog_category_t> categories;

int Configure(const char* path)
{
    try
    {
        configuration = ReadConfiguration(path);
        return 0;
    }
    catch (const std::exception& broken)
    {
        // zlog reports errors to the file in this variable, and otherwise nowhere.
        if (std::getenv("ZLOG_PROFILE_ERROR") != nullptr) std::fprintf(stderr, "zlog: %s\n", broken.what());
        return -1;
    }
}

std::string Text(const char* format, va_list arguments)
{
    char* text = nullptr;
    if (vasprintf(&text, format, arguments) < 0) return {};
    const std::string copy(text);
    std::free(text);
    return copy;
}

void Write(const Record& record, int level)
{
    for (const Rule& rule : configuration->rules)
    {
        if (!rule.Fits(record.category, level)) continue;
        const std::string line = Print(rule.format, record);
        const ssize_t written = write(*rule.out, line.data(), line.size());
        static_cast<void>(written);
    }
}
}  // namespace

int zlog_init(const char* config)
{
    const std::lock_guard<std::mutex> lock(writing);
    return configuration ? -1 : Configure(config);
}

int zlog_reload(const char* config)
{
    const std::lock_guard<std::mutex> lock(writing);
    return configuration ? Configure(config) : -1;
}

void zlog_fini(void)
{
    const std::lock_guard<std::mutex> lock(writing);
    configuration.reset();
    categories.clear();
}

zlog_category_t* zlog_get_category(const char* name)
{
    const std::lock_guard<std::mutex> lock(writing);
    return configuration ? &categories.insert({name, {name}}).first->second : nullptr;
}

void zlog(zlog_category_t* category, const char* file, size_t filelen, const char* func, size_t funclen, long line,
          int level, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = Text(format, arguments);
    va_end(arguments);
    timeval now{};
    gettimeofday(&now, nullptr);
    const std::lock_guard<std::mutex> lock(writing);
    if (!configuration) return;
    Write({category->name, {file, filelen}, {func, funclen}, line, configuration->NameOf(level), text, now}, level);
}
