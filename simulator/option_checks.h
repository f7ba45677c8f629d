/// @file
/// What the values of the command line must be. Each answers what was expected of one that is none, and nothing of
/// one that is, as CLI11 wants its checks.
#pragma once

#include <string>

namespace ipodsim
{
std::string CheckSpeed(const std::string& text);
std::string CheckSeed(const std::string& text);
std::string CheckDeviceName(const std::string& name);
std::string CheckFault(const std::string& fault);
}  // namespace ipodsim
