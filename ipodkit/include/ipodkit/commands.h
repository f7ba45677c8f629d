/// @file
/// The commands of the service, with real results. Each returns a Request: nothing is sent before Start(),
/// Future(), Wait(), or co_await. Where the service answers "false", the result is ErrorKind::Refused. Where a command
/// documents a range, other values are ErrorKind::BadArgument, and nothing is sent.
///
/// For pages of lists use Pager, for accessory bytes AccessorySession, and to request an audio source AudioSource.
#pragma once

#include <ipodkit/event.h>
#include <ipodkit/request.h>
#include <ipodkit/types.h>

#include <chrono>
#include <cstdint>
#include <string>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// The position in the playing track.
struct PlayPosition
{
    std::chrono::milliseconds position{};  ///< from the start of the track
    std::chrono::milliseconds duration{};  ///< of the track
};
template <>
struct Rows<PlayPosition>
{
    static constexpr const char* type = "PlayPosition";
    static constexpr const char* name = "position";
    static constexpr std::tuple all{
        Row{"position", &PlayPosition::position, "ms", "Position in the track"},
        Row{"length", &PlayPosition::duration, "ms", "Length of the track"},
    };
};

/// How StartPlayback() starts playback on the audio source that was granted last.
enum class PlayOption : int
{
    Start = 3,
    Resume = 4,   ///< continue where playback was interrupted
    Restart = 5,  ///< from the start of the track
};

/// Whether the device fast-forwards or rewinds.
enum class Winding : int
{
    Forward,
    Backward,
    None,
};
template <>
struct EnumNames<Winding>
{
    static constexpr const char* type = "Winding";
    static constexpr const char* names[] = {"forward", "backward", "none"};
};

/// A button of the accessory remote control. The service defines the numbers of the buttons.
struct ButtonPress
{
    std::uint32_t button = 0;          ///< number of the button
    std::uint32_t state = 0;           ///< 1 pressed, 0 released
    std::chrono::milliseconds held{};  ///< how long it has been pressed; 0 to 2^32 - 1
};

/// The accessory protocols of the head unit.
struct AccessoryInfo
{
    std::string protocols;  ///< separated by commas, for example "com.example.echo"
    std::string bundleId;   ///< of the companion app
};

/// The requests to the service, from Session::Commands(). Copies are cheap, and may outlive the session: requests then
/// fail with ErrorKind::Cancelled. Any thread may use them.
class Commands
{
public:
    Commands(std::shared_ptr<detail::Bus> bus, std::chrono::milliseconds deadline)
        : m_bus(std::move(bus)), m_deadline(deadline)
    {
    }

    /// @name Playback
    /// @{
    Request<void> StartPlayback(PlayOption option) const;       ///< starts playback without checking the audio source
    Request<void> Pause() const;                                ///< pauses playback
    Request<void> Stop() const;                                 ///< stops playback
    Request<void> Next() const;                                 ///< skips to the next track
    Request<void> Previous() const;                             ///< skips to the previous track
    Request<void> Seek(std::chrono::seconds position) const;    ///< from the start of the track; -2^31 to 2^31 - 1 s
    Request<void> FastForward() const;                          ///< until StopWinding()
    Request<void> FastBackward() const;                         ///< until StopWinding()
    Request<void> StopWinding() const;                          ///< ends fast-forward or rewind
    Request<void> SetShuffle(ipodkit::Shuffle mode) const;      ///< 0 to 255, whether or not the enumeration names it
    Request<void> SetRepeat(ipodkit::Repeat mode) const;        ///< 0 to 255, whether or not the enumeration names it
    Request<void> PressButton(const ButtonPress& press) const;  ///< sends one press or release
    Request<void> SetTransmission(bool on) const;  ///< reports whether the head unit receives the device's audio
    /// @}

    /// @name Playback state, as the service reports it now
    /// @{
    Request<Track> CurrentTrack() const;
    Request<ipodkit::PlayStatus> PlayStatus() const;
    Request<PlayPosition> Position() const;
    Request<Winding> WindingStatus() const;
    Request<ipodkit::Shuffle> Shuffle() const;
    Request<ipodkit::Repeat> Repeat() const;
    Request<int> PlayingIndex() const;  ///< -1 when nothing plays
    Request<int> PlayingCount() const;  ///< entries of the playing list

    /// The artwork of the playing track, of any size, and its dimensions as the service reports them; `available` is
    /// false when there is none. PlayerState::artwork already has it unless it exceeds SessionOptions::artworkLimit.
    /// ErrorKind::NoSharedMemory before the session was first Ready, and when the shared memory is damaged. The service
    /// has one place for artwork: concurrent requests may receive each other's image.
    Request<ArtworkChanged> Artwork() const;
    /// @}

    /// @name Music database. When the service has executed a command, every pager of the session whose list it changes
    /// drops its pages, before the command completes. Pager::EnterChild() and its siblings drop them at once.
    /// @{
    Request<int> DatabaseCount(bool fromTop = false) const;  ///< entries of the current level, or of the top level
    Request<void> EnterRoot() const;                         ///< goes to the root
    Request<void> EnterParent() const;                       ///< goes one level up; ErrorKind::Refused at the root
    Request<void> EnterChild(int index) const;               ///< from 0; ErrorKind::Refused for a song
    Request<bool> AtRoot() const;                            ///< whether the current level is the root
    Request<void> PlayDatabaseEntry(int index) const;        ///< from 0; the level becomes the playing list
    Request<void> PlayPlayingEntry(int index) const;         ///< from 0
    /// @}

    /// @name Devices
    /// @{
    Request<int> DeviceCount() const;            ///< attached devices
    Request<void> EnterDevice(int index) const;  ///< from 0; all pagers drop their pages, and the state is read again
    Request<std::string> IpodName() const;       ///< the name that its owner gave the device
    Request<std::string> ForegroundApp() const;  ///< bundle identifier; empty if no app is in the foreground
    Request<void> LaunchApp(const std::string& bundleId) const;        ///< starts an app; UTF-8, no NUL, at most 1 MiB
    Request<CarPlayDevice> CarPlayStatus() const;                      ///< the detected CarPlay device
    Request<DeviceStatus> CarLifeStatus() const;                       ///< whether a CarLife device is detected
    Request<void> NotifyCarPlay(bool connected, bool wireless) const;  ///< reports the state of the CarPlay session
    Request<void> AnnounceAccessory(const AccessoryInfo& info) const;  ///< UTF-8 without NUL, at most 255 bytes each
    Request<void> SetHubTestMode(unsigned char mode) const;  ///< 0 ends it; for production and maintenance only
    /// @}

private:
    std::shared_ptr<detail::Bus> m_bus;
    std::chrono::milliseconds m_deadline;
};
}  // namespace ipodkit

#pragma GCC visibility pop
