/// @file
/// The loudspeakers: one of the unit's two iPod sources, from the request to the release.
///
///     AudioSource source(session, 0);
///     source.Request();                    // asks the audio-source manager
///     …the manager activates the source: source.Activated(confirmation);
///     source.Play().Start([](Result<void> done) { … });
///
/// The manager tells the application, not the player, when it activates or deactivates a source; the application hands
/// that on. Playback that the manager interrupted for a while goes on by itself when it activates the source again.
///
/// **Context thread only.** Calls the audio-source manager on the context thread; the manager is expected to answer at
/// once.
#pragma once

#include <ipodkit/session.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
enum class AudioState
{
    Released,   ///< somebody else's
    Granted,    ///< requested and granted, not active yet
    Active,     ///< may sound
    Playing,    ///< playback was started
    Suspended,  ///< was playing when the manager took the source away for a while
};

/// "Playing" for AudioState::Playing.
const char* Name(AudioState state);

struct AudioTransition
{
    AudioState from;
    AudioState to;
    std::string why;
};

class AudioSource
{
public:
    /// @param number  0 or 1: the manager's source 10 or 11
    AudioSource(Session& session, int number);

    /// Leaves the source as it is.
    ~AudioSource();
    AudioSource(const AudioSource&) = delete;
    AudioSource& operator=(const AudioSource&) = delete;

    AudioState State() const;

    /// Asks the manager. ErrorKind::Refused with its code; ErrorKind::NoService before the session was ready once;
    /// ErrorKind::BadArgument for a number that is neither 0 nor 1.
    Result<void> Request();

    /// @name What the manager did
    /// Both confirm it to the manager through the core's player; without one, before the session was ready once, they
    /// do nothing. @p confirmation is the value that the manager gave with its word and wants back; the companion does
    /// not look at it. The core's confirmation names source 10, whichever it is.
    /// @{

    /// The source is active, asked for or not. Suspended playback goes on; when the service does not let it, the log
    /// has a line of level WARN with the reason, and the state stays Active.
    void Activated(int confirmation);

    /// The source was taken away. @p forAWhile: the manager will activate it again by itself, and playback goes on
    /// then; the state is Suspended while something played, else Granted. Otherwise the source is Released.
    void Deactivated(int confirmation, bool forAWhile);
    /// @}

    /// Starts playback. ErrorKind::Refused unless the source is active, according to the manager, when the request
    /// starts. Any thread may make and start it.
    ipodkit::Request<void> Play(PlayOption option = PlayOption::Start);

    /// Gives the source back to the manager.
    void Release();

    /// The last transitions, at most 64, oldest first.
    std::vector<AudioTransition> Trace() const;

    Subscription OnTransition(std::string name, std::function<void(const AudioTransition&)> callback);

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::shared_ptr<Impl> m_impl;
    Subscription m_listening;
    Subscription m_watching;
};
}  // namespace ipodkit

#pragma GCC visibility pop
