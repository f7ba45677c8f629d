/// @file
/// The playing list and its playback order.
#pragma once

#include <QBXIpodTypes.h>

#include <cstddef>
#include <optional>
#include <random>
#include <vector>

#include "music/track.h"

namespace ipodsim
{
class Queue
{
public:
    /// @param seed  seed for shuffling; the same seed gives the same order
    explicit Queue(unsigned seed) : m_random(seed) {}

    /// Replaces the list and moves to @p start, which comes first in any order.
    void Fill(TrackList tracks, std::size_t start);

    const TrackList& Tracks() const { return m_tracks; }
    bool Empty() const { return m_tracks.empty(); }
    /// Index within the list, regardless of the order. The list must not be empty.
    std::size_t Index() const { return m_order[m_at]; }
    TrackPtr Current() const { return Empty() ? nullptr : m_tracks[Index()]; }

    /// Moves to an entry of the list; false if the index does not exist.
    bool Jump(int index);
    /// Moves to the next entry in playback order. Wraps around in any repeat mode; otherwise returns false at the end
    /// and changes nothing.
    bool Next();
    /// Moves to the previous entry in playback order. Wraps around in any repeat mode; otherwise returns false at the
    /// start.
    bool Previous();
    /// Moves on after the end of a track; stays with IPOD_REPEAT_ONE. At the end of the list, moves to the first entry
    /// and returns false.
    bool Advance();

    iPodPlayerShuffleStatus Shuffle() const { return m_shuffle; }
    iPodPlayerRepeatStatus Repeat() const { return m_repeat; }
    /// Keeps the current entry.
    void SetShuffle(iPodPlayerShuffleStatus mode);
    void SetRepeat(iPodPlayerRepeatStatus mode) { m_repeat = mode; }

private:
    void Order(std::size_t start);
    void ShuffleSongs(std::size_t start);
    void ShuffleAlbums(std::size_t start);

    TrackList m_tracks;
    std::vector<std::size_t> m_order;  // indices of the list in playback order
    std::size_t m_at = 0;              // position within that order
    iPodPlayerShuffleStatus m_shuffle = IPOD_SHUFFLE_OFF;
    iPodPlayerRepeatStatus m_repeat = IPOD_REPEAT_OFF;
    std::mt19937 m_random;
};
}  // namespace ipodsim
