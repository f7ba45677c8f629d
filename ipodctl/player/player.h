/// @file
/// Reads and formats the current track, the playback state, and the status of device and player.
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
/// Returns "Title - Artist", printable; "(no title)" replaces an empty title.
std::string TrackLine(const ipodkit::Track& track);

/// Returns whether nothing is known about the track.
bool IsEmpty(const ipodkit::Track& track);

/// Returns "image/png, 1234 bytes, 300 x 300". Omits impossible dimensions; appends ", incomplete" if truncated.
std::string PictureLine(const ipodkit::Picture& picture);

/// Like PictureLine(), with the dimensions that the service reported; "none" without artwork.
std::string ArtworkLine(const ipodkit::ArtworkChanged& artwork);

/// Requests the first iPod source from the audio-source manager and confirms its activation.
/// @throws Failure  kNothingDone, if the manager refuses
void TakeAudioSource(Session& session);

struct Playing
{
    ipodkit::PlayStatus state;
    ipodkit::PlayPosition at;
    int index;   ///< in the playing list; -1 for none
    int amount;  ///< entries in the playing list
    ipodkit::Track track;
};

/// Reads the playback state from the service after a command, because no event marks the last effect of a command, and
/// returns the answer of the verb. Requests only what the output format prints, and works without the shared memory.
Answer AnswerWithPlaying(Context& context, const char* verb);

/// Extracts the playback state from @p state; unknown fields get default values.
Playing PlayingIn(const ipodkit::PlayerState& state);

Json PlayingJson(const Playing& playing);

/// Returns "playing: Title - Artist", or "stopped".
std::string PlayingLine(const Playing& playing);

/// Returns the answer of a verb that changed the playback state.
Answer ToAnswer(const Playing& playing, const char* verb);

/// Sends a request that acts on the loaded track.
///
/// @param refusal  the error if the service answers "false" although a track is loaded
/// @throws Failure  kNothingDone, if the service rejects the request
void AskOfTrack(Session& session, ipodkit::Request<void> request, const Refusal& refusal);

/// @throws Failure  always, kNothingDone
[[noreturn]] void RefuseNothingLoaded();

/// Returns the playback state of the loaded track.
/// @throws Failure  kNothingDone, if nothing is loaded
Playing RequireTrack(const ipodkit::PlayerState& state);

/// Lists the fields that every service supports but this one did not report, with the reason. Empty if it reported all
/// of them, or if no device is attached.
/// @throws Failure  the service reported nothing
std::string NotReported(const ipodkit::PlayerState& state);

/// Checks that the service reported the current track and its index.
/// @throws Failure  it did not, although a device is attached
void RequireTrackReported(const ipodkit::PlayerState& state);

struct Status
{
    ipodkit::StatePtr state;
    int firstNear = 0;              ///< index of the first entry of near
    std::vector<std::string> near;  ///< entries of the playing list around the current one
    std::string nearRefusal;        ///< why near could not be read; empty on success
    int position = 0;               ///< milliseconds, at the time of the read
    int length = 0;                 ///< milliseconds
};

/// Reads the current status.
/// @param near  number of queue entries to read before and after the current one
Status ReadStatus(Session& session, int near);

/// Returns whether a track is loaded.
bool HasTrack(const Status& status);

/// Returns the status as JSON. Unknown values are null or omitted.
Json StatusJson(const Status& status);
}  // namespace ctl
