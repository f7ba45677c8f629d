/// @file
/// The status as lines of a screen of any size, and a screen that stays.
#pragma once

#include "output/output.h"
#include "player/player.h"
#include "session/session.h"

namespace ctl
{
enum class Art
{
    OnTerminal,  ///< where there is room for it
    Always,
    Never,
};

/// What `ipodctl status` shows.
std::string StatusText(const Status& status, const Output& out, Art art);

/// What `ipodctl info` shows.
std::string InfoText(const Status& status, const Output& out, Art art);

/// Shows the status whenever it changes, until Ctrl-C: in its place on a terminal, otherwise one after the other.
/// @param show  what to show of a status
void Watch(Context& context, int near, const std::function<Answer(const Status&)>& show);
}  // namespace ctl
