/// @file
/// Suggestions for unknown names.
#pragma once

#include <string>
#include <vector>

namespace ipodsim
{
/// Returns " (did you mean 'NAME'?)" to append to a list of expected names; empty if no name is close.
std::string NearestHint(const std::string& name, const std::vector<std::string>& names);

/// Returns "the interface has no WHAT 'name'", with the nearest of @p names as a suggestion.
std::string UnknownName(const char* what, const std::string& name, const std::vector<std::string>& names);
}  // namespace ipodsim
