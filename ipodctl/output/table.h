/// @file
/// Columns of text, aligned by what they take on a terminal.
#pragma once

#include <string>
#include <vector>

namespace ctl
{
/// One line per row, cells two blanks apart, nothing after the last visible character. Printable text only.
/// Lines longer than @p width columns are cut in their widest column.
std::string Table(const std::vector<std::vector<std::string>>& rows, int width);

/// The same cells without alignment, for pipes: one long name would pad every line to its length.
std::string Unaligned(const std::vector<std::vector<std::string>>& rows);
}  // namespace ctl
