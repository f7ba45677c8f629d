/// @file
/// The properties of org.mpris.MediaPlayer2.Player as a function of the state.
#pragma once

#include <ipodkit/player_state.h>

#include <string>
#include <string_view>
#include <tuple>

#include "bus_object.h"

namespace companion
{
/// Identifies a track among those that follow each other. Empty titles, index -1: none plays.
using TrackKey = std::tuple<int, std::string, std::string, std::string, int>;

/// Returns the playing track; null if there is none, or if the service is away.
const ipodkit::Track* PlayingTrack(const ipodkit::PlayerState& state);

TrackKey KeyOf(const ipodkit::PlayerState& state);

/// Returns the length of the playing track; 0 if unknown.
std::chrono::milliseconds LengthOf(const ipodkit::PlayerState& state);

/// @name What the methods may do now: the properties of these names.
/// @{
bool CanGoNext(const ipodkit::PlayerState& state);
bool CanGoPrevious(const ipodkit::PlayerState& state);
bool CanPlay(const ipodkit::PlayerState& state);
bool CanPause(const ipodkit::PlayerState& state);
bool CanSeek(const ipodkit::PlayerState& state);
/// @}

/// "Playing", also while winding, "Paused", or "Stopped".
const char* PlaybackStatus(const ipodkit::PlayerState& state);

/// Returns whether songs or albums are shuffled; nothing if unknown, or for a mode without a name.
std::optional<bool> IsShuffled(const ipodkit::PlayerState& state);

/// Returns the mode of a LoopStatus; nothing for other texts.
std::optional<ipodkit::Repeat> RepeatOf(std::string_view loopStatus);

/// @param trackId  object path
/// @param artUrl   empty: none
Values PlayerProperties(const ipodkit::PlayerState& state, const std::string& trackId, const std::string& artUrl);
}  // namespace companion
