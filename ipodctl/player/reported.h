/// @file
/// What the service did not report about the player, and why.
#pragma once

#include <ipodkit/player_state.h>

#include <string>

#include "session/session.h"

namespace ctl
{
/// What every service knows and this one did not report, and why; empty when it reported everything.
/// @throws Failure  it reported nothing
std::string NotReported(Session& session, const ipodkit::PlayerState& state);

/// @throws Failure  it did not report what plays
void RequireTrackReported(Session& session, const ipodkit::PlayerState& state);
}  // namespace ctl
