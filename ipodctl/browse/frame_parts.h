/// @file
/// The lines around the list, and the texts in it. They may be wider than the screen.
#pragma once

#include "browse/frame.h"

namespace ctl::browse
{
/// Whether a name has letters that many keyboards lack: its reading helps.
bool IsForeign(std::string_view name);

/// Where one is: the path, and the place in the list.
Line TitleLine(const Model& model, int columns);

/// Why the list is empty.
Line EmptyLine(const Model& model);

Frame HelpLines(int first, int height, int columns);

/// What plays, or what is wrong with the service.
Line PlayingLine(const Model& model, int columns, Time now);

/// What is typed, a message, what is wrong with the list, or the keys.
Line FootLine(const Model& model, int columns, Time now);
}  // namespace ctl::browse
