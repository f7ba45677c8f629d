/// @file
/// One of the head unit's two iPod audio sources, from request to release.
///
///     AudioSource source(session, 0);
///     source.Request();                    // asks the audio-source manager
///     …the manager activates the source: source.Activated(confirmation);
///     source.Play().Start([](Result<void> done) { … });
///
/// The manager notifies the application, not the player, when it activates or deactivates a source; the application
/// calls Activated() and Deactivated(). Playback that the manager interrupted resumes when it activates the source
/// again.
///
/// **Context thread only**, except for Play(). Operations that call the audio-source manager block until it returns.
#pragma once

#include <ipodkit/session.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// The steps of an audio source.
enum class AudioState
{
    Released,   ///< not requested, refused, or released
    Granted,    ///< requested and granted, not active
    Active,     ///< may be heard
    Playing,    ///< playback was started
    Suspended,  ///< playback was interrupted when the manager deactivated the source temporarily
};

/// "Playing" for AudioState::Playing.
const char* Name(AudioState state);

/// One change of an AudioSource's state.
struct AudioTransition
{
    AudioState from;
    AudioState to;
    std::string why;  ///< for logs: "granted", "the service was lost"
};

/// One of the two audio sources, with the state of its request and of its playback.
class AudioSource
{
public:
    /// @param number  0 or 1: source 10 or 11 of the manager; with any other, Request() returns ErrorKind::BadArgument
    AudioSource(Session& session, int number);

    /// Does not release the source.
    ~AudioSource();
    AudioSource(const AudioSource&) = delete;
    AudioSource& operator=(const AudioSource&) = delete;

    /// Returns the present state.
    AudioState State() const;

    /// Requests the source from the manager; does nothing unless it is Released. ErrorKind::Refused when the manager
    /// refuses, with its code in the reason; ErrorKind::NoService before the session was first Ready.
    Result<void> Request();

    /// @name Notifications by the manager
    /// Both send a confirmation to the manager through the core's player, which names source 10 in either case. They do
    /// nothing before the session was first Ready. @p confirmation is the value that came with the notification; it is
    /// returned to the manager unchanged.
    /// @{

    /// Call this when the manager has activated the source, requested or not. Resumes suspended playback; if that
    /// fails, the reason is logged, level WARN, and the state stays Active.
    void Activated(int confirmation);

    /// Call this when the manager has deactivated the source. If @p forAWhile is true, the manager will activate it
    /// again by itself: the state becomes Suspended if something was playing, else Granted. Otherwise it becomes
    /// Released.
    void Deactivated(int confirmation, bool forAWhile);
    /// @}

    /// Starts playback. ErrorKind::Refused unless the manager reports the source as active when the request starts. Any
    /// thread may make and start it; the context must run.
    ipodkit::Request<void> Play(PlayOption option = PlayOption::Start);

    /// Releases the source to the manager. Does nothing when it is already Released.
    void Release();

    /// Returns the last transitions, at most 64, oldest first.
    std::vector<AudioTransition> Trace() const;

    /// Calls back after each transition, with State() already changed. The log identifies the callback by @p name.
    Subscription OnTransition(std::string name, std::function<void(const AudioTransition&)> callback);

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::shared_ptr<Impl> m_impl;
    Subscription m_listening;
    Subscription m_watching;
};
}  // namespace ipodkit

#pragma GCC visibility pop
