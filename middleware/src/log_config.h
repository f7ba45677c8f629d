/// @file
/// The configuration texts that both log sinks accept: "LEVEL" and "LEVEL:FILE".
#pragma once

#include <optional>
#include <string>

struct LogLevel
{
    int number;
    const char* name;
};

/// zlog's levels.
inline constexpr LogLevel kLogLevels[] = {{20, "DEBUG"}, {40, "INFO"},   {60, "NOTICE"},
                                          {80, "WARN"},  {100, "ERROR"}, {120, "FATAL"}};

struct LogConfig
{
    LogLevel level;                   ///< this level and above are logged
    std::optional<std::string> file;  ///< empty for standard error

    /// Opens the file for appending, creating it if needed. Returns its descriptor, STDERR_FILENO without a file, or -1
    /// with errno set.
    int Open() const;
};

/// Returns the parsed @p text, or nothing when it does not begin with a level.
std::optional<LogConfig> ParseLogConfig(const std::string& text);
