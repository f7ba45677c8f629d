/// @file
/// Text for a terminal.
#pragma once

#include <string>

namespace ipodsim
{
/// The text as valid UTF-8, with a replacement character for what could make a terminal do something: control
/// characters, and marks that turn the direction of text.
std::string Printable(const std::string& text);
}  // namespace ipodsim
