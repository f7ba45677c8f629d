/// @file
/// Lines for a terminal, put beside each other.
#pragma once

#include <string>
#include <vector>

#include "picture/drawing.h"

namespace ctl
{
using Lines = std::vector<std::string>;

/// As many of @p parts as fit into @p width columns, with blanks between them; those at the end are the first to go.
std::string Fitting(const Lines& parts, int width);

/// A drawing on the left of lines, with a gap of two columns.
Lines Beside(const Drawing& drawing, const Lines& lines);

std::string Joined(const Lines& lines);
Lines Split(const std::string& text);
}  // namespace ctl
