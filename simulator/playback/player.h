/// @file
/// Playback without sound: a queue, an advancing position, and the state that the buttons control.
#pragma once

#include <QBXIpodTypes.h>

#include "playback/queue.h"

namespace ipodsim
{
/// Is notified after each change.
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

/// All times are milliseconds of the track. Only Advance() moves the position. A track of unknown length plays until it
/// is skipped or stopped.
class Player
{
public:
    Player(unsigned seed, PlayerObserver& observer) : m_queue(seed), m_observer(observer) {}

    const Queue& List() const { return m_queue; }
    iPodPlayerPlayStatus Status() const { return m_status; }
    /// Playing, paused, or winding.
    bool Loaded() const { return m_status != IPOD_PLAY_STATUS_STOPPED; }
    bool Winding() const;
    /// Whether the position advances.
    bool Running() const { return Loaded() && m_status != IPOD_PLAY_STATUS_PAUSED; }
    int Position() const { return m_position; }
    /// The track that is playing or paused; null when stopped.
    TrackPtr Track() const { return Loaded() ? m_queue.Current() : nullptr; }
    /// 0 if unknown or stopped.
    int Length() const;
    /// Index within the playing list; -1 when stopped.
    int Index() const { return Loaded() ? static_cast<int>(m_queue.Index()) : -1; }

    /// Replaces the playing list and starts it.
    void PlayList(TrackList tracks, std::size_t start);
    /// Empties the playing list.
    void Clear();
    /// Jumps to an entry of the playing list and plays it; false if the index does not exist.
    bool PlayEntry(int index);

    /// Starts the current entry, resumes after a pause, or ends winding. False if the list is empty.
    bool Play();
    /// Like Play(), but from the start of the track.
    bool Restart();
    /// Returns whether it is now paused.
    bool Pause();
    void Stop();
    /// False at the end of the list without repetition, and when stopped.
    bool Next();
    /// Goes to the previous track within the first three seconds of a track, later to its start.
    bool Previous();
    /// Clamps the position to the track.
    void Seek(int positionMs);
    /// Winds at eight times the normal speed. False when stopped.
    bool Wind(bool forward);
    /// Restores the state before winding; true even if it was not winding.
    bool StopWinding();

    void SetShuffle(iPodPlayerShuffleStatus mode);
    void SetRepeat(iPodPlayerRepeatStatus mode);

    /// Advances time; at most one track ends per step.
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
