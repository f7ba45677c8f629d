/// @file
/// Whole files, with clear errors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ctl
{
/// Far more than the shared memory takes; files without an end have one here.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

/// The bytes of a file, or of standard input for "-".
/// @throws Failure  kUsage, when it cannot be read, or is longer than @p most bytes
std::vector<unsigned char> ReadFile(const std::string& path, std::size_t most = kMostBytes);

/// Writes a file anew.
/// @throws Failure  kUsage when it cannot be opened, kNoOutput when it cannot be written
void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes);

/// Where to write: @p path itself when its last part has an extension, else with @p extension behind it; inside a
/// folder under @p name and the extension. A path that ends with a slash is a folder.
std::string FileIn(const std::string& path, const char* name, const char* extension);
}  // namespace ctl
