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
/// Distinguishes a track from the previous and the next one: index, title, artist, album, and track number. Index -1
/// means that no track plays.
using TrackKey = std::tuple<int, std::string, std::string, std::string, int>;

/// Returns the playing track, which @p state owns; null if there is none, or no service.
const ipodkit::Track* PlayingTrack(const ipodkit::PlayerState& state);

TrackKey KeyOf(const ipodkit::PlayerState& state);

/// Returns the length of the playing track; 0 if unknown.
std::chrono::milliseconds LengthOf(const ipodkit::PlayerState& state);

/// @name The properties of the same names
/// @{
bool CanGoNext(const ipodkit::PlayerState& state);
bool CanGoPrevious(const ipodkit::PlayerState& state);
bool CanPlay(const ipodkit::PlayerState& state);
bool CanPause(const ipodkit::PlayerState& state);
bool CanSeek(const ipodkit::PlayerState& state);
/// @}

/// Returns "Playing" (also while winding), "Paused", or "Stopped".
const char* PlaybackStatus(const ipodkit::PlayerState& state);

/// Returns whether songs or albums are shuffled; nothing if unknown, or for a mode without a name.
std::optional<bool> IsShuffled(const ipodkit::PlayerState& state);

/// Returns the repeat mode of a LoopStatus; nothing if the text is not valid.
std::optional<ipodkit::Repeat> RepeatOf(std::string_view loopStatus);

/// Returns the properties, except for Position.
/// @param trackId  object path
/// @param artUrl   empty without artwork
Values PlayerProperties(const ipodkit::PlayerState& state, const std::string& trackId, const std::string& artUrl);
}  // namespace companion
