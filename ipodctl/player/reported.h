/// @file
/// What the service did not report about the player, and why.
#pragma once

#include <ipodkit/player_state.h>

#include <string>

namespace ctl
{
/// Lists the fields that every service supports and this one did not report, with the reason. Empty if it reported all
/// of them, or if no device is attached.
/// @throws Failure  it reported nothing
std::string NotReported(const ipodkit::PlayerState& state);

/// @throws Failure  it did not report what plays
void RequireTrackReported(const ipodkit::PlayerState& state);
}  // namespace ctl
