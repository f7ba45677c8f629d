/// @file
/// Formats the status for a screen of any size, and keeps a screen up to date.
#pragma once

#include "output/output.h"
#include "player/player.h"
#include "session/session.h"

namespace ctl
{
enum class Art
{
    OnTerminal,  ///< if the output is a terminal with enough room
    Always,
    Never,
};

/// Returns the text output of `ipodctl status`.
std::string StatusText(const Status& status, const Output& out, Art art);

/// Returns the text output of `ipodctl info`.
std::string InfoText(const Status& status, const Output& out, Art art);

/// Shows the status whenever it changes, until Ctrl-C: updates it in place on a terminal, otherwise appends it.
/// @param near  see ReadStatus()
/// @param show  formats a status
void Watch(Context& context, int near, const std::function<Answer(const Status&)>& show);
}  // namespace ctl
