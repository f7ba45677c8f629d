#include "log_config.h"

#include <QBXLog.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{
// QBX_LOG enables logging from the start in programs that do not set it up themselves.
[[gnu::constructor]] void InitFromEnvironment()
{
    const char* const config = std::getenv("QBX_LOG");
    if (config == nullptr || *config == '\0' || QBX_LogInit(config) != 0) return;
    std::fprintf(stderr, "QBX_LOG='%s': %s\n%s\n", config, std::strerror(errno),
                 "hint: use DEBUG, INFO, NOTICE, WARN, ERROR, or FATAL; LEVEL:FILE; or a configuration file where zlog "
                 "is installed");
}
}  // namespace

int LogConfig::Open() const
{
    return file ? open(file->c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666) : STDERR_FILENO;
}

std::optional<LogConfig> ParseLogConfig(const std::string& text)
{
    const std::size_t colon = text.find(':');
    for (const LogLevel& level : kLogLevels)
    {
        if (text.compare(0, colon, level.name) != 0) continue;
        if (colon == std::string::npos) return LogConfig{level, std::nullopt};
        return LogConfig{level, text.substr(colon + 1)};
    }
    return std::nullopt;
}
