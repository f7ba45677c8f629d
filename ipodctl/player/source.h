/// @file
/// The audio source: without it the unit must not sound.
#pragma once

#include "session/session.h"

namespace ctl
{
/// Requests the first iPod source from the unit and confirms its activation.
/// @throws Failure  kNothingDone, when the unit refuses
void TakeAudioSource(Session& session);
}  // namespace ctl
