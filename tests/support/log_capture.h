/// @file
/// Replaces the log sink: the test program defines zlog() and liblog_category itself, so every record of the client
/// ends up here.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace test
{
/// One call of zlog().
struct LogRecord
{
    int level;
    std::string file;
    std::size_t fileLength;
    std::string function;
    std::size_t functionLength;
    long line;
    std::string format;
    std::string text;
};

/// All records since the start or the last ClearLog(). These functions are thread-safe.
std::vector<LogRecord> LogRecords();

/// The same as lines "LEVEL FUNCTION: TEXT", for example "40 Pause: Pause()".
std::vector<std::string> LogLines();

/// The same as lines "LEVEL FUNCTION: FORMAT".
std::vector<std::string> LogFormats();

void ClearLog();

/// Disables logging, which is set up when a test starts.
void SwitchLoggingOff();

/// The number of lines in LogLines() equal to this text.
std::size_t CountLogLines(const std::string& line);
}  // namespace test
