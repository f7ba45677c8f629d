/// @file
/// Reads and writes whole files.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ctl
{
/// Default size limit in bytes: far above the capacity of the shared memory, and bounds endless files.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

/// Returns the contents of a file, or of standard input for "-".
/// @throws Failure  kUsage if it cannot be read or exceeds @p most bytes
std::vector<unsigned char> ReadFile(const std::string& path, std::size_t most = kMostBytes);

/// Creates or truncates a file and writes @p bytes to it.
/// @throws Failure  kUsage if it cannot be opened, kNoOutput if it cannot be written
void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes);

/// Returns the path of the file to write.
/// If @p path is an existing folder or ends with a slash, this is the file @p name plus @p extension inside it.
/// Special files and paths with an extension are returned unchanged; @p extension is appended to all others.
std::string FileIn(const std::string& path, const char* name, const char* extension);
}  // namespace ctl
