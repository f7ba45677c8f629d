/// @file
/// How far a track has come, as a bar.
#pragma once

#include <string>

namespace ctl
{
/// Of at most @p width columns, and never wider than looks well: "[====>    ]", or with @p utf8 "━━━━━╸────".
/// The length is not known when it is 0 or below: dashes.
std::string ProgressBar(int position, int length, int width, bool utf8);
}  // namespace ctl
