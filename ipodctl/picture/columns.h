/// @file
/// Arranges text for a terminal side by side.
#pragma once

#include <string>
#include <vector>

#include "picture/drawing.h"

namespace ctl
{
using Lines = std::vector<std::string>;

/// Joins as many of @p parts as fit into @p width columns, separated by spaces; drops parts from the end.
std::string Fitting(const Lines& parts, int width);

/// Puts a drawing to the left of lines, with a gap of two columns.
Lines Beside(const Drawing& drawing, const Lines& lines);

std::string Joined(const Lines& lines);
Lines Split(const std::string& text);
}  // namespace ctl
