/// @file
/// Text for a terminal: what may be shown, how wide it is, how times and bars are written.
/// Pure functions; any thread may call them. All text is UTF-8, and none depends on the locale.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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
}  // namespace ctl
