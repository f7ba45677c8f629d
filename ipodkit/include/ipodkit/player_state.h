/// @file
/// What is known of the device, as one immutable value.
#pragma once

#include <QBXIpodTypes.h>
#include <ipodkit/commands.h>
#include <ipodkit/picture.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
enum class Phase
{
    Absent,      ///< the service has not been seen
    Connecting,  ///< it is there; it is being asked for its state
    Ready,       ///< the state follows the service's events, and is complete but for PlayerState::missing
    Lost,        ///< it was there and went away; the state is the last that was known
};

/// "Ready" for Phase::Ready.
const char* Name(Phase phase);

/// The parts of a PlayerState, one bit each.
enum class Field : std::uint32_t
{
    Connection = 1U << 0,  ///< phase, generation, error, missing
    Track = 1U << 1,
    TrackIndex = 1U << 2,
    Status = 1U << 3,
    Position = 1U << 4,
    Shuffle = 1U << 5,
    Repeat = 1U << 6,
    QueueSize = 1U << 7,
    Artwork = 1U << 8,
    Device = 1U << 9,
    DeviceCount = 1U << 10,
    DeviceName = 1U << 11,
    SourceValid = 1U << 12,
    CarPlay = 1U << 13,
    CarLife = 1U << 14,
    Wireless = 1U << 15,
    Pairing = 1U << 16,
    Location = 1U << 17,
    ForegroundApp = 1U << 18,
    Battery = 1U << 19,
    Calls = 1U << 20,
    AccessorySessions = 1U << 21,  ///< the last one, which Fields::All() goes by
};

/// "track index" for Field::TrackIndex.
const char* Name(Field field);

/// A set of fields.
class Fields
{
public:
    constexpr Fields() = default;
    constexpr Fields(Field field) : m_bits(static_cast<std::uint32_t>(field)) {}
    static constexpr Fields All() { return Fields((static_cast<std::uint32_t>(Field::AccessorySessions) << 1) - 1); }

    constexpr bool Has(Field field) const { return (m_bits & static_cast<std::uint32_t>(field)) != 0; }
    constexpr bool Empty() const { return m_bits == 0; }
    constexpr Fields operator|(Fields other) const { return Fields(m_bits | other.m_bits); }
    constexpr Fields operator&(Fields other) const { return Fields(m_bits & other.m_bits); }
    constexpr Fields Without(Fields other) const { return Fields(m_bits & ~other.m_bits); }
    constexpr bool operator==(Fields other) const { return m_bits == other.m_bits; }

private:
    constexpr explicit Fields(std::uint32_t bits) : m_bits(bits) {}

    std::uint32_t m_bits = 0;
};

constexpr Fields operator|(Field one, Field other)
{
    return Fields(one) | Fields(other);
}

/// "track, position": the fields that a set holds, separated by commas.
std::string Names(Fields fields);

/// Where playback was at a moment, and where it is now if nothing else was heard.
struct Position
{
    std::chrono::milliseconds position;
    std::chrono::milliseconds duration;        ///< 0 when unknown
    std::chrono::steady_clock::time_point at;  ///< when the position was right
    bool advancing;                            ///< whether it goes on by itself

    /// Not beyond the end of the track.
    std::chrono::milliseconds At(std::chrono::steady_clock::time_point now) const;
};

struct WirelessCarPlay
{
    bool available;
    std::string deviceAddress;
};

/// Out-of-band pairing information.
struct PairingInfo
{
    std::string bluetoothAddress;
    std::vector<unsigned char> bytes;
};

/// What is not known is absent. Values of the service that the headers have no name for are passed on.
///
/// Read from the service whenever it appears, and whenever a device comes, goes, or is entered by this session: track,
/// index, status, position, modes, queue size, artwork, number and name of devices, CarPlay, CarLife, foreground app.
/// The rest is reported by events only, hence unknown until the first.
struct PlayerState
{
    std::uint64_t version = 0;  ///< grows by 1 with each value that is published
    Phase phase = Phase::Absent;
    std::uint32_t generation = 0;  ///< how often the service has appeared
    std::optional<Error> error;    ///< why the session is not Ready, or why fields are missing
    Fields missing;                ///< not answered within the deadline, and still being waited for; Ready only

    std::optional<QBXiPodTrackInfo> track;
    std::optional<int> trackIndex;  ///< -1 when nothing plays
    std::optional<iPodPlayerPlayStatus> status;
    std::optional<Position> position;
    std::optional<iPodPlayerShuffleStatus> shuffle;
    std::optional<iPodPlayerRepeatStatus> repeat;
    std::optional<int> queueSize;
    PicturePtr artwork;  ///< of the playing track; null when there is none

    std::optional<QBXAppleDeviceDetectStatus> device;
    std::optional<int> deviceCount;
    std::optional<std::string> deviceName;
    std::optional<bool> sourceValid;
    std::optional<CarPlayDevice> carPlay;
    std::optional<QBXAppleDeviceDetectStatus> carLife;
    std::optional<WirelessCarPlay> wireless;
    std::optional<PairingInfo> pairing;
    std::optional<LocationStatus> location;
    std::optional<std::string> foregroundApp;
    iPodBattery_t battery;
    std::map<std::string, iPodPhoneCall_t> calls;  ///< ongoing ones, by UUID; those without one share the key ""
    std::map<std::uint16_t, unsigned char> accessorySessions;  ///< open ones: number, index of the protocol
};

using StatePtr = std::shared_ptr<const PlayerState>;

/// The fields in which two states differ.
Fields Differences(const PlayerState& one, const PlayerState& other);
}  // namespace ipodkit

#pragma GCC visibility pop
