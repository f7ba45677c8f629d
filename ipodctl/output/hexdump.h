/// @file
/// Bytes for people.
#pragma once

#include <string>
#include <string_view>

namespace ctl
{
/// "0a1b".
std::string Hex(std::string_view bytes);

/// Sixteen bytes a line: where they begin, each as two digits, and as characters; "." for what is none of ASCII's.
/// Empty for no bytes; without a new line at its end.
std::string Hexdump(std::string_view bytes);
}  // namespace ctl
