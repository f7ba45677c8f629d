/// @file
/// The lines around the list and the texts in it. Draw() clips them to the screen.
#pragma once

#include "browse/frame.h"

namespace ctl::browse
{
/// Returns whether @p name contains non-Latin letters, so that a reading helps to type it.
bool IsForeign(std::string_view name);

/// The path of the current level and the position in the list.
Line TitleLine(const Model& model, int columns);

/// Explains an empty list.
Line EmptyLine(const Model& model);

Frame HelpLines(int first, int height, int columns);

/// The current track, or the state of the connection if it is not ready.
Line PlayingLine(const Model& model, int columns, Time now);

/// A message, the prompt, a warning about the list, or the key hints, in this order of priority.
Line FootLine(const Model& model, int columns, Time now);
}  // namespace ctl::browse
