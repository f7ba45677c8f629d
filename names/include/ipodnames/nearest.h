/// @file
/// Suggestions for mistyped names.
#pragma once

#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodnames
{
/// Returns the first of @p names that needs the fewest edits to become @p name. An edit adds, removes, or replaces one
/// character; case is ignored. Empty if that takes more than max(2, a third of the length of @p name) edits, if it
/// would replace the whole name, and for names of more than 64 characters. Any bytes are safe. Thread-safe.
std::string Nearest(const std::string& name, const std::vector<std::string>& names);
}  // namespace ipodnames

#pragma GCC visibility pop
