/// @file
/// Checks of the command line's values, as CLI11 wants them: each returns what was expected, or nothing for a valid
/// value.
#pragma once

#include <string>

namespace ipodsim
{
std::string CheckSpeed(const std::string& text);
std::string CheckSeed(const std::string& text);
std::string CheckNotEmpty(const std::string& name);
std::string CheckDeviceName(const std::string& name);
std::string CheckFault(const std::string& fault);
}  // namespace ipodsim
