/// @file
/// Whole files, with clear errors.
#pragma once

#include <string>
#include <vector>

namespace ctl
{
/// The bytes of a file, or of standard input for "-".
/// @throws Failure  kUsage, when it cannot be read
std::vector<unsigned char> ReadFile(const std::string& path);

/// Writes a file anew.
/// @throws Failure  kUsage, when it cannot be written
void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes);

/// Where to write: @p path itself when its last part has an extension, else with @p extension behind it; inside a
/// folder under @p name and the extension. A path that ends with a slash is a folder.
std::string FileIn(const std::string& path, const char* name, const char* extension);
}  // namespace ctl
