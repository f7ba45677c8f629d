/// @file
/// Formats text for terminals: columns, tables, progress bars, and hex dumps.
#pragma once

#include <cli/text.h>
#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ctl
{
using cli::IsUnsafe;
using cli::Printable;

/// Case-folds text for comparison.
std::string Folded(std::string_view text);

/// Returns the width of printable text in terminal columns: 2 for a wide character, 0 for a combining one.
int Width(std::string_view text);

/// Truncates printable text to @p width columns, the last of which is an ellipsis if anything was cut.
std::string Cut(std::string_view text, int width);

/// Pads text with trailing (PadLeft(): leading) blanks to @p width columns.
std::string Pad(std::string_view text, int width);
std::string PadLeft(std::string_view text, int width);

/// Formats a time as "3:45" or "1:02:03". Negative times become 0.
std::string Clock(int milliseconds);
inline std::string Clock(std::chrono::milliseconds time)
{
    return Clock(static_cast<int>(time.count()));
}

/// Returns an ASCII bar "[====>    ]" of @p width columns in total; dashes if @p length is unknown (0 or negative).
std::string Bar(int position, int length, int width);

/// Formats a count with its noun: "1 entry", "2 entries".
std::string Count(int number, const char* one, const char* many);

/// Returns "did you mean 'WORD'?" with the most similar of @p words, or @p otherwise if none is similar.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& words, const std::string& otherwise);

constexpr int kMostDigits = 9;
constexpr int kLargestIndex = 999999999;

/// Parses a non-negative number of 1 to 9 decimal digits; returns nothing for other text.
std::optional<int> ParseIndex(std::string_view text);

/// A seek target: an absolute time, or an offset from the current position.
struct SeekTarget
{
    bool relative;
    int seconds;
};

/// Parses "90", "1:30", "1:02:03", "+10", or "-1:30"; returns nothing for other text.
std::optional<SeekTarget> ParseSeek(std::string_view text);

using PaintRow = std::function<void(std::size_t row, std::vector<std::string>& cells)>;

/// Formats one line per row, with two blanks between columns and no trailing blanks. The cells must be printable. If a
/// line exceeds @p width columns, the widest columns are truncated, down to 8 columns each.
///
/// @param paint  may color the cells of a row, given its index; they are padded and cut already
std::string Table(const std::vector<std::vector<std::string>>& rows, int width, const PaintRow& paint = {});

/// Formats the same cells without alignment, for pipes: one long name would pad every line.
std::string Unaligned(const std::vector<std::vector<std::string>>& rows);

/// Returns a progress bar of @p width columns, clamped to 4..42: "[====>    ]", or "━━━━━╸────" if @p utf8. Draws
/// dashes if @p length is unknown (0 or negative).
std::string ProgressBar(int position, int length, int width, bool utf8);

/// Formats the permissions of a file as four octal digits: "0600".
std::string ModeText(mode_t mode);

/// Returns lowercase hexadecimal digits: "0a1b".
std::string Hex(std::string_view bytes);

/// Formats sixteen bytes per line: offset, hexadecimal digits, and characters, with "." for anything but printable
/// ASCII. Returns an empty string for no bytes; no trailing newline.
std::string Hexdump(std::string_view bytes);

using Lines = std::vector<std::string>;

/// Joins as many of @p parts as fit into @p width columns, separated by three blanks; drops parts from the end.
std::string Fitting(const Lines& parts, int width);

/// Joins the parts with @p separator between them.
std::string Joined(const std::vector<std::string>& parts, const char* separator = "\n");
Lines Split(const std::string& text);
}  // namespace ctl
