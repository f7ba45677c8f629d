/// @file
/// Takes the place of the log sink: the test program defines zlog() and liblog_category itself, so that every
/// record of the client ends here.
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

/// All records since the start or the last ClearLog(). Any thread may call these.
std::vector<LogRecord> LogRecords();

/// The same as lines "LEVEL FUNCTION: TEXT", for example "40 Pause: Pause()".
std::vector<std::string> LogLines();

/// The same as lines "LEVEL FUNCTION: FORMAT".
std::vector<std::string> LogFormats();

void ClearLog();

/// Logging is set up when a test starts; from here on it is not.
void SwitchLoggingOff();

/// How many lines LogLines() has of this text.
std::size_t CountLogLines(const std::string& line);
}  // namespace test
