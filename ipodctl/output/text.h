/// @file
/// Text for people: what a terminal can show, in columns, tables, bars and dumps.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ctl
{
/// Whether a code point could make a terminal do something: control characters and those that turn the
/// direction of text.
bool IsUnsafe(std::uint32_t codePoint);

/// The text with a replacement character for everything that is unsafe or no valid UTF-8.
std::string Printable(std::string_view text);

/// The text without its differences of upper and lower case, for comparing.
std::string Folded(std::string_view text);

/// Columns that printable text takes on a terminal: 2 for a wide character, 0 for a combining one.
int Width(std::string_view text);

/// Printable text cut to at most @p width columns, the last one an ellipsis when something was cut.
std::string Cut(std::string_view text, int width);

/// The text with blanks after it (or before it) up to @p width columns.
std::string Pad(std::string_view text, int width);
std::string PadLeft(std::string_view text, int width);

/// "3:45" or "1:02:03". Negative times are 0.
std::string Clock(int milliseconds);
inline std::string Clock(std::chrono::milliseconds time)
{
    return Clock(static_cast<int>(time.count()));
}

/// "[====>    ]" of @p width columns in all; dashes when the length is not known.
std::string Bar(int position, int length, int width);

/// "1 entry", "2 entries".
std::string Count(int number, const char* one, const char* many);

/// A number from 0 that consists of digits only; nothing when it is something else or too large.
std::optional<int> ParseIndex(std::string_view text);

/// Where to seek: to a time, or by a time from the present position.
struct SeekTarget
{
    bool relative;
    int seconds;
};

/// "90", "1:30", "1:02:03", "+10", "-1:30".
std::optional<SeekTarget> ParseSeek(std::string_view text);

/// One line per row, cells two blanks apart, nothing after the last visible character. Printable text only.
/// Lines longer than @p width columns are cut in their widest column.
std::string Table(const std::vector<std::vector<std::string>>& rows, int width);

/// The same cells without alignment, for pipes: one long name would pad every line to its length.
std::string Unaligned(const std::vector<std::vector<std::string>>& rows);

/// Of at most @p width columns, and never wider than looks well: "[====>    ]", or with @p utf8 "━━━━━╸────".
/// The length is not known when it is 0 or below: dashes.
std::string ProgressBar(int position, int length, int width, bool utf8);

/// "0a1b".
std::string Hex(std::string_view bytes);

/// Sixteen bytes a line: where they begin, each as two digits, and as characters; "." for what is none of ASCII's.
/// Empty for no bytes; without a new line at its end.
std::string Hexdump(std::string_view bytes);
}  // namespace ctl
