/// @file
/// What the service did not tell of the player when it was asked for its state, and why.
#pragma once

#include <ipodkit/player_state.h>

#include <string>

#include "session/session.h"

namespace ctl
{
/// What it did not tell although every service knows it, and why; empty when it told all of it.
/// @throws Failure  it told nothing
std::string NotTold(Session& session, const ipodkit::PlayerState& state);

/// @throws Failure  it did not tell what plays
void RequireTrackTold(Session& session, const ipodkit::PlayerState& state);
}  // namespace ctl
