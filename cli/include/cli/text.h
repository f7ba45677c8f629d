/// @file
/// Makes text from outside safe for terminals.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cli
{
/// A character of possibly invalid UTF-8: one byte if it is not valid.
struct Character
{
    std::uint32_t codePoint;  ///< 0 if invalid
    std::size_t bytes;
    bool valid;
};

/// Returns the first character of @p text, which must not be empty.
Character First(std::string_view text);

/// Returns whether a code point can affect a terminal: control characters, line and paragraph separators, and
/// bidirectional controls.
bool IsUnsafe(std::uint32_t codePoint);

/// Replaces unsafe characters and invalid UTF-8 with U+FFFD.
std::string Printable(std::string_view text);

/// The same for a message that may have its remedy on a second line, after "hint: ".
std::string PrintableWithHint(const std::string& message);
}  // namespace cli
