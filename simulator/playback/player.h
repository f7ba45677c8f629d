/// @file
/// Playback without sound: a queue, a position that advances, and the state that follows from the buttons.
#pragma once

#include <QBXIpodTypes.h>

#include "playback/queue.h"

namespace ipodsim
{
/// Learns what changed, after it changed.
class PlayerObserver
{
public:
    virtual ~PlayerObserver() = default;
    virtual void OnTrack() = 0;
    virtual void OnStatus() = 0;
    virtual void OnProgress() = 0;
    virtual void OnAmount() = 0;
    virtual void OnShuffle() = 0;
    virtual void OnRepeat() = 0;
};

/// All times are milliseconds of the track. Nothing moves but by Advance(). A track of unknown length plays until it is
/// skipped or stopped.
class Player
{
public:
    Player(unsigned seed, PlayerObserver& observer) : m_queue(seed), m_observer(observer) {}

    const Queue& List() const { return m_queue; }
    iPodPlayerPlayStatus Status() const { return m_status; }
    /// Playing, paused or winding.
    bool Loaded() const { return m_status != IPOD_PLAY_STATUS_STOPPED; }
    bool Winding() const;
    /// Whether time passes.
    bool Running() const { return Loaded() && m_status != IPOD_PLAY_STATUS_PAUSED; }
    int Position() const { return m_position; }
    /// The track that plays or is paused, null when stopped.
    TrackPtr Track() const { return Loaded() ? m_queue.Current() : nullptr; }
    /// 0 if it is unknown, as when stopped.
    int Length() const;
    /// Within the playing list, -1 when stopped.
    int Index() const { return Loaded() ? static_cast<int>(m_queue.Index()) : -1; }

    /// Replaces the playing list and starts it.
    void PlayList(TrackList tracks, std::size_t start);
    /// Empties the playing list.
    void Clear();
    /// Jumps to an entry of the playing list and plays it; false when there is none of that index.
    bool PlayEntry(int index);

    /// Starts what the playing list stands at, goes on after a pause, or ends winding. False with an empty list.
    bool Play();
    /// As Play(), from the start of the track.
    bool Restart();
    /// True when it is paused now.
    bool Pause();
    void Stop();
    /// False at the end of the list without repetition, and when stopped.
    bool Next();
    /// Within the first three seconds of a track goes to the one before, later to the start of this one.
    bool Previous();
    /// The position is brought into the track.
    void Seek(int positionMs);
    /// Winds at eight times the speed. False when stopped.
    bool Wind(bool forward);
    /// Back to what it did before winding; true also when it did not wind.
    bool StopWinding();

    void SetShuffle(iPodPlayerShuffleStatus mode);
    void SetRepeat(iPodPlayerRepeatStatus mode);

    /// Lets time pass: at most one track ends in one step.
    void Advance(int elapsedMs);

private:
    int End() const;
    void SetStatus(iPodPlayerPlayStatus status);
    void StartTrack(int position);
    void WindBack(int elapsedMs);
    void EndTrack(int beyondEnd);

    Queue m_queue;
    PlayerObserver& m_observer;
    iPodPlayerPlayStatus m_status = IPOD_PLAY_STATUS_STOPPED;
    iPodPlayerPlayStatus m_beforeWinding = IPOD_PLAY_STATUS_PLAYING;
    int m_position = 0;
};
}  // namespace ipodsim
