/// @file
/// The playing list and the order in which it is played.
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
    /// @param seed  of the shuffled orders; the same seed gives the same orders
    explicit Queue(unsigned seed) : m_random(seed) {}

    /// Replaces the list and stands at @p start, which is the first in any order.
    void Fill(TrackList tracks, std::size_t start);

    const TrackList& Tracks() const { return m_tracks; }
    bool Empty() const { return m_tracks.empty(); }
    /// Index within the list, whatever the order. The list must not be empty.
    std::size_t Index() const { return m_order[m_at]; }
    TrackPtr Current() const { return Empty() ? nullptr : m_tracks[Index()]; }

    /// Goes to an entry of the list; false when there is none of that index.
    bool Jump(int index);
    /// The next entry in order. Wraps around with any repetition; false at the end otherwise, and nothing changes.
    bool Next();
    /// The entry before in order. Wraps around with any repetition; false at the start otherwise.
    bool Previous();
    /// What follows when a track has ended: the same one with IPOD_REPEAT_ONE. At the end of the list it goes back to
    /// the first and returns false.
    bool Advance();

    iPodPlayerShuffleStatus Shuffle() const { return m_shuffle; }
    iPodPlayerRepeatStatus Repeat() const { return m_repeat; }
    /// The entry that is current stays so.
    void SetShuffle(iPodPlayerShuffleStatus mode);
    void SetRepeat(iPodPlayerRepeatStatus mode) { m_repeat = mode; }

private:
    void Order(std::size_t start);
    void ShuffleSongs(std::size_t start);
    void ShuffleAlbums(std::size_t start);

    TrackList m_tracks;
    std::vector<std::size_t> m_order;  // indices of the list in the order of playing
    std::size_t m_at = 0;              // place within that order
    iPodPlayerShuffleStatus m_shuffle = IPOD_SHUFFLE_OFF;
    iPodPlayerRepeatStatus m_repeat = IPOD_REPEAT_OFF;
    std::mt19937 m_random;
};
}  // namespace ipodsim
