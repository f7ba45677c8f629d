/// @file
/// Suggestions for names that are not known.
#pragma once

#include <string>
#include <vector>

namespace ipodsim
{
/// Returns the name that differs in the fewest characters, whatever their case; empty when all differ in more than two
/// characters and a third of @p name.
std::string Nearest(const std::string& name, const std::vector<std::string>& names);

/// For a list of expected names: " (nearest: NAME)", or nothing.
std::string NearestHint(const std::string& name, const std::vector<std::string>& names);

/// "no WHAT of the interface is named 'name'", with the nearest of @p names.
std::string UnknownName(const char* what, const std::string& name, const std::vector<std::string>& names);
}  // namespace ipodsim
