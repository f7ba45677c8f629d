/// @file
/// What the device is playing, asked for in one go.
#pragma once

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

Playing ReadPlaying(Session& session);

Json PlayingJson(const Playing& playing);

/// "playing: Title - Artist", or "stopped".
std::string PlayingLine(const Playing& playing);

/// The answer of a verb that changed what is playing: what it is now.
Answer NowPlaying(Session& session, const char* verb);

/// Makes a request that acts on what is loaded.
///
/// @param refusal  what to say when the service answers "false" although something is
/// @throws Failure  kNothingDone, when the service does not do it
void AskOfTrack(Session& session, ipodkit::Request<void> request, const char* refusal);

/// @throws Failure  kNothingDone
[[noreturn]] void RefuseNothingLoaded();

/// Makes sure that something is loaded that a command could act on.
/// @throws Failure  kNothingDone
Playing RequireTrack(Session& session);
}  // namespace ctl
