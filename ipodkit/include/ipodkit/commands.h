/// @file
/// The commands of the service, with real results. Each returns a Request: nothing is sent before Start(), Future()
/// or Wait(). Where the service answers "false", the result is ErrorKind::Refused. Where one says what it takes,
/// everything else is ErrorKind::BadArgument, and nothing is sent.
///
/// Pages of lists are the Pager's, accessory bytes go through an AccessorySession, and the request for an audio source
/// is AudioSource's.
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
struct PlayPosition
{
    std::chrono::milliseconds position{};
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

/// What starts playback on the audio source that was granted last.
enum class PlayOption : int
{
    Start = 3,
    Resume = 4,   ///< continue where playback was interrupted
    Restart = 5,  ///< from the start of the track
};

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
    std::uint32_t button = 0;
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
    Request<void> StartPlayback(PlayOption option) const;
    Request<void> Pause() const;
    Request<void> Stop() const;
    Request<void> Next() const;
    Request<void> Previous() const;
    Request<void> Seek(std::chrono::seconds position) const;  ///< from the start of the track; -2^31 to 2^31 - 1
    Request<void> FastForward() const;
    Request<void> FastBackward() const;
    Request<void> StopWinding() const;
    Request<void> SetShuffle(ipodkit::Shuffle mode) const;  ///< 0 to 255, with a name or without
    Request<void> SetRepeat(ipodkit::Repeat mode) const;    ///< 0 to 255, with a name or without
    Request<void> PressButton(const ButtonPress& press) const;
    Request<void> SetTransmission(bool on) const;  ///< whether the head unit receives the device's audio
    /// @}

    /// @name What plays
    /// @{
    Request<Track> CurrentTrack() const;
    Request<ipodkit::PlayStatus> PlayStatus() const;
    Request<PlayPosition> Position() const;
    Request<Winding> WindingStatus() const;
    Request<ipodkit::Shuffle> Shuffle() const;
    Request<ipodkit::Repeat> Repeat() const;
    Request<int> PlayingIndex() const;  ///< -1 when nothing plays
    Request<int> PlayingCount() const;  ///< entries of the playing list

    /// The artwork of the playing track, of any size, with what the service reports about it; `available` is false when
    /// there is none. PlayerState::artwork has it already unless it exceeds SessionOptions::artworkLimit.
    /// ErrorKind::NoSharedMemory before the session was ready once, and when the shared memory is damaged. The service
    /// has one place for artwork: two of these requests at the same time may mix their images.
    Request<ArtworkChanged> Artwork() const;
    /// @}

    /// @name Music database. Every pager of the session whose list changes starts afresh when the service has followed
    /// the command, before its completion. Pager::EnterChild() and its siblings do so at once.
    /// @{
    Request<int> DatabaseCount(bool fromTop = false) const;  ///< entries of the current level, or of the top level
    Request<void> EnterRoot() const;
    Request<void> EnterParent() const;
    Request<void> EnterChild(int index) const;  ///< from 0; ErrorKind::Refused for a song
    Request<bool> AtRoot() const;
    Request<void> PlayDatabaseEntry(int index) const;  ///< from 0; the level becomes the playing list
    Request<void> PlayPlayingEntry(int index) const;   ///< from 0
    /// @}

    /// @name Devices
    /// @{
    Request<int> DeviceCount() const;
    Request<void> EnterDevice(int index) const;  ///< all pagers start afresh, and the state is read again
    Request<std::string> IpodName() const;       ///< the name that its owner gave the device
    Request<std::string> ForegroundApp() const;  ///< bundle identifier, or empty
    Request<void> LaunchApp(const std::string& bundleId) const;  ///< UTF-8 without NUL, at most 1 MiB
    Request<CarPlayDevice> CarPlayStatus() const;
    Request<DeviceStatus> CarLifeStatus() const;
    Request<void> NotifyCarPlay(bool connected, bool wireless) const;  ///< state of the CarPlay session
    Request<void> AnnounceAccessory(const AccessoryInfo& info) const;  ///< UTF-8 without NUL, at most 255 bytes each
    Request<void> SetHubTestMode(unsigned char mode) const;            ///< for production and service only
    /// @}

private:
    std::shared_ptr<detail::Bus> m_bus;
    std::chrono::milliseconds m_deadline;
};
}  // namespace ipodkit

#pragma GCC visibility pop
