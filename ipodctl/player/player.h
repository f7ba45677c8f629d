/// @file
/// The track, what the device is playing, and all that is known of device and player.
#pragma once

#include <ipodkit/event.h>
#include <ipodkit/picture.h>
#include <ipodkit/player_state.h>

#include <string>
#include <vector>

#include "output/output.h"
#include "session/session.h"

namespace ctl
{
/// "Title - Artist", printable; "(no title)" when there is none.
std::string TrackLine(const ipodkit::Track& track);

/// Whether nothing at all is known of the track.
bool IsEmpty(const ipodkit::Track& track);

/// "image/png, 1234 bytes, 300 x 300", without impossible dimensions; ", incomplete" when its end is missing.
std::string PictureLine(const ipodkit::Picture& picture);

/// The same, with the dimensions that the service reported; "none" without artwork.
std::string ArtworkLine(const ipodkit::ArtworkChanged& artwork);

/// Requests the first iPod source from the audio-source manager and confirms its activation.
/// @throws Failure  kNothingDone, when the manager refuses
void TakeAudioSource(Session& session);

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

/// Lists the fields that every service supports and this one did not report, with the reason. Empty if it reported all
/// of them, or if no device is attached.
/// @throws Failure  it reported nothing
std::string NotReported(const ipodkit::PlayerState& state);

/// @throws Failure  it did not report what plays
void RequireTrackReported(const ipodkit::PlayerState& state);

struct Status
{
    ipodkit::StatePtr state;
    int firstNear = 0;              ///< index of the first entry of near
    std::vector<std::string> near;  ///< entries of the playing list around the playing one
    std::string nearRefusal;        ///< why near could not be read; empty when it was
    int position = 0;               ///< milliseconds, now
    int length = 0;                 ///< milliseconds
};

/// @param near  how many entries before and after the playing one
Status ReadStatus(Session& session, int near);

/// Whether something is loaded.
bool HasTrack(const Status& status);

/// What is unknown is null or left out.
Json StatusJson(const Status& status);
}  // namespace ctl
