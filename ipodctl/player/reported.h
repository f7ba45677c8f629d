/// @file
/// What the service did not report about the player, and why.
#pragma once

#include <ipodkit/player_state.h>

#include <string>

namespace ctl
{
/// The fields that every service knows and this one did not report, and why; empty when it reported them all, or there
/// is no device.
/// @throws Failure  it reported nothing
std::string NotReported(const ipodkit::PlayerState& state);

/// @throws Failure  it did not report what plays
void RequireTrackReported(const ipodkit::PlayerState& state);
}  // namespace ctl
