/// @file
/// Text for a terminal.
#pragma once

#include <string>

namespace ipodsim
{
/// Returns the text as valid UTF-8 with control and bidirectional formatting characters replaced, so that it cannot
/// affect the terminal.
std::string Printable(const std::string& text);

/// The same for a message that may have its remedy on a second line, after "hint: ".
std::string PrintableWithHint(const std::string& message);
}  // namespace ipodsim
