/// @file
/// What the device is playing.
#pragma once

#include <ipodkit/player_state.h>

#include "output/output.h"
#include "session/session.h"

namespace ctl
{
struct Playing
{
    ipodkit::PlayStatus state;
    ipodkit::PlayPosition at;
    int index;   ///< within the playing list, -1 for none
    int amount;  ///< entries of the playing list
    ipodkit::Track track;
};

/// Reads it from the service, after a command: no event says when the last effect of a command was reported.
Playing ReadPlaying(Session& session);

/// What of it a state has.
Playing PlayingIn(const ipodkit::PlayerState& state);

Json PlayingJson(const Playing& playing);

/// "playing: Title - Artist", or "stopped".
std::string PlayingLine(const Playing& playing);

/// The answer of a verb that changed what is playing.
Answer ToAnswer(const Playing& playing, const char* verb);

/// Makes a request that acts on what is loaded.
///
/// @param refusal  what to say when the service answers "false" although something is
/// @throws Failure  kNothingDone, when the service does not do it
void AskOfTrack(Session& session, ipodkit::Request<void> request, const char* refusal);

/// @throws Failure  kNothingDone
[[noreturn]] void RefuseNothingLoaded();

/// What a command can act on.
/// @throws Failure  kNothingDone, when nothing is loaded
Playing RequireTrack(const ipodkit::PlayerState& state);
}  // namespace ctl
