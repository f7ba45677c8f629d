/// @file
/// A screen that stays, and follows the state of the player.
#pragma once

#include "player/status.h"
#include "session/context.h"

namespace ctl
{
/// Shows the status whenever it changes, until Ctrl-C: in its place on a terminal, otherwise one after the other.
/// @param show  what to show of a status
void Watch(Context& context, int near, const std::function<Answer(const Status&)>& show);
}  // namespace ctl
