#include "playback/player.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace ipodsim
{
namespace
{
constexpr int kWindingFactor = 8;
constexpr int kPreviousRestartsAfterMs = 3000;
}  // namespace

bool Player::Winding() const
{
    return m_status == IPOD_PLAY_STATUS_FAST_FORWARD || m_status == IPOD_PLAY_STATUS_FAST_BACKWARD;
}

int Player::Length() const
{
    const TrackPtr track = Track();
    return track == nullptr ? 0 : track->lengthMs;
}

// The end of the track; effectively never (24 days) if its length is unknown.
int Player::End() const
{
    const int length = Length();
    return length == 0 ? std::numeric_limits<int>::max() : length;
}

void Player::SetStatus(iPodPlayerPlayStatus status)
{
    if (status == m_status) return;
    m_status = status;
    m_observer.OnStatus();
}

void Player::StartTrack(int position)
{
    m_position = std::min(position, End());
    m_observer.OnTrack();
    m_observer.OnProgress();
}

void Player::PlayList(TrackList tracks, std::size_t start)
{
    if (tracks.empty()) return;
    m_queue.Fill(std::move(tracks), start);
    m_observer.OnAmount();
    SetStatus(IPOD_PLAY_STATUS_PLAYING);
    StartTrack(0);
}

void Player::Clear()
{
    Stop();
    m_queue.Fill({}, 0);
    m_observer.OnAmount();
}

bool Player::PlayEntry(int index)
{
    if (!m_queue.Jump(index)) return false;
    SetStatus(IPOD_PLAY_STATUS_PLAYING);
    StartTrack(0);
    return true;
}

bool Player::Play()
{
    if (m_queue.Empty()) return false;
    const bool wasLoaded = Loaded();
    SetStatus(IPOD_PLAY_STATUS_PLAYING);
    if (!wasLoaded) StartTrack(0);
    return true;
}

bool Player::Restart()
{
    if (!Play()) return false;
    Seek(0);
    return true;
}

bool Player::Pause()
{
    if (!Loaded()) return false;
    SetStatus(IPOD_PLAY_STATUS_PAUSED);
    return true;
}

void Player::Stop()
{
    m_position = 0;
    SetStatus(IPOD_PLAY_STATUS_STOPPED);
}

bool Player::Next()
{
    if (!Loaded() || !m_queue.Next()) return false;
    StopWinding();
    StartTrack(0);
    return true;
}

bool Player::Previous()
{
    if (!Loaded()) return false;
    StopWinding();
    if (m_position > kPreviousRestartsAfterMs || !m_queue.Previous())
        Seek(0);
    else
        StartTrack(0);
    return true;
}

void Player::Seek(int positionMs)
{
    if (!Loaded()) return;
    m_position = std::clamp(positionMs, 0, End());
    m_observer.OnProgress();
}

bool Player::Wind(bool forward)
{
    if (!Loaded()) return false;
    if (!Winding()) m_beforeWinding = m_status;
    SetStatus(forward ? IPOD_PLAY_STATUS_FAST_FORWARD : IPOD_PLAY_STATUS_FAST_BACKWARD);
    return true;
}

bool Player::StopWinding()
{
    if (Winding()) SetStatus(m_beforeWinding);
    return true;
}

void Player::SetShuffle(iPodPlayerShuffleStatus mode)
{
    m_queue.SetShuffle(mode);
    m_observer.OnShuffle();
}

void Player::SetRepeat(iPodPlayerRepeatStatus mode)
{
    m_queue.SetRepeat(mode);
    m_observer.OnRepeat();
}

void Player::Advance(int elapsedMs)
{
    if (!Running()) return;
    if (m_status == IPOD_PLAY_STATUS_FAST_BACKWARD) return WindBack(elapsedMs);
    const int factor = m_status == IPOD_PLAY_STATUS_FAST_FORWARD ? kWindingFactor : 1;
    const int left = End() - m_position;
    const std::int64_t step = std::int64_t{elapsedMs} * factor;
    if (step >= left) return EndTrack(static_cast<int>(step - left));
    m_position += static_cast<int>(step);
    m_observer.OnProgress();
}

// Playback resumes at the start of the track: a device does not wind into the previous track.
void Player::WindBack(int elapsedMs)
{
    m_position = std::max(0, m_position - elapsedMs * kWindingFactor);
    m_observer.OnProgress();
    if (m_position == 0) StopWinding();
}

void Player::EndTrack(int beyondEnd)
{
    const bool wound = Winding();
    StopWinding();
    if (!m_queue.Advance()) return Stop();
    StartTrack(wound ? 0 : beyondEnd);
}
}  // namespace ipodsim
