/// @file
/// Formats of a configuration, such as `"%d(%F %T) %-5V %m%n"`.
#pragma once

#include <sys/time.h>

#include <string>
#include <vector>

struct Record
{
    std::string category;
    std::string file;
    std::string function;
    long line;
    std::string level;
    std::string message;
    timeval time;
};

/// Text and the conversion after it; the last piece has no conversion.
struct Piece
{
    std::string text;
    std::string width;       ///< "-5" of "%-5V"
    std::string conversion;  ///< "V", "ms", "d(%F %T)"
};

using Format = std::vector<Piece>;

/// @throws std::invalid_argument  for a conversion that zlog or this stand-in does not support
Format ParseFormat(const std::string& text);

/// The line that a rule writes.
std::string Print(const Format& format, const Record& record);
