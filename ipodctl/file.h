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

/// The path itself when its last part has an extension, else with @p extension behind it.
std::string WithExtension(const std::string& path, const char* extension);
}  // namespace ctl
