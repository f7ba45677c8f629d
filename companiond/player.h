/// @file
/// org.mpris.MediaPlayer2.Player: publishes the state, and sends commands.
#pragma once

#include <ipodkit/picture_files.h>
#include <ipodkit/session.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "bus_object.h"
#include "counters.h"
#include "player_properties.h"

namespace companion
{
/// Returns the directory of the artwork files, which belongs to the daemon.
std::string ArtworkDirectory();

/// Announces changes that follow each other within 20 ms together. A new track waits for its artwork for up to 300 ms.
class Player : public BusObject
{
public:
    Player(GDBusConnection* connection, ipodkit::Session& session, Counters& counters);
    ~Player() override;

    /// Must be called with every state of the session, whose settle time must be 0.
    void Follow(const ipodkit::StatePtr& state);

private:
    using Clock = std::chrono::steady_clock;

    /// The last seek, until it has been announced.
    enum class Seeking
    {
        None,
        Requested,
        Reported,  ///< the new position was reported before the answer arrived
        Done,      ///< the next position is a jump, however small
    };

    using Method = void (Player::*)(GVariant* arguments, GDBusMethodInvocation* invocation);

    GVariant* Compute(const std::string& property) const override;
    std::string WhyAbsent(const std::string& property) const override;
    void Call(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation) override;
    void Set(const std::string& property, GVariant* value, GDBusMethodInvocation* invocation) override;

    void Next(GVariant*, GDBusMethodInvocation* invocation);
    void Previous(GVariant*, GDBusMethodInvocation* invocation);
    void Play(GVariant*, GDBusMethodInvocation* invocation);
    void Pause(GVariant*, GDBusMethodInvocation* invocation);
    void PlayPause(GVariant*, GDBusMethodInvocation* invocation);
    void Stop(GVariant*, GDBusMethodInvocation* invocation);
    void Seek(GVariant* arguments, GDBusMethodInvocation* invocation);
    void SetPosition(GVariant* arguments, GDBusMethodInvocation* invocation);
    void OpenUri(GVariant*, GDBusMethodInvocation* invocation);
    void SetLoop(GVariant* value, GDBusMethodInvocation* invocation);
    void SetShuffle(GVariant* value, GDBusMethodInvocation* invocation);
    void SetRate(GVariant* value, GDBusMethodInvocation* invocation);
    void SetVolume(GVariant* value, GDBusMethodInvocation* invocation);

    void SendIf(bool possible, ipodkit::Request<void> request, GDBusMethodInvocation* invocation);
    void SeekTo(std::chrono::microseconds position, GDBusMethodInvocation* invocation);
    void BeginTrack(TrackKey key);
    void ReportJump(const ipodkit::PlayerState& next);
    void SeekAnswered(bool accepted);
    void EmitSeeked(std::chrono::microseconds position);
    void Schedule();
    void Show();
    std::string TrackId() const;
    std::string ArtUrl();
    std::chrono::microseconds Position() const;
    ipodkit::Commands Commands() const { return m_session.Commands(); }

    ipodkit::Session& m_session;
    Counters& m_counters;
    const ipodkit::PictureFiles m_files{ArtworkDirectory()};
    ipodkit::StatePtr m_state;  // the latest
    TrackKey m_key;             // of the current track
    std::uint64_t m_track = 0;  // counts tracks
    bool m_trackIsNew = false;  // not announced yet
    Seeking m_seeking = Seeking::None;
    const std::shared_ptr<Player*> m_alive = std::make_shared<Player*>(this);  // for answers that come later
    Clock::time_point m_trackSince;                                            // when it began
    Clock::time_point m_changedSince;                                          // time of the first unannounced change
    guint m_timer = 0;
    ipodkit::PicturePtr m_picture;  // the image of m_artUrl
    std::string m_artUrl;
};
}  // namespace companion
