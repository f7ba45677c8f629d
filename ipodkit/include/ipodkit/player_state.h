/// @file
/// The state of player and device as one immutable value.
#pragma once

#include <ipodkit/fields.h>
#include <ipodkit/known.h>
#include <ipodkit/picture.h>
#include <ipodkit/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// The steps of a session: Absent, Connecting, Ready, Lost, Connecting, …
enum class Phase
{
    Absent,      ///< the service has not appeared
    Connecting,  ///< the service is on the bus; its state is being read
    Ready,       ///< the state follows the service's events, and is complete except for PlayerState::missing
    Lost,        ///< the service left the bus; the state is its last one
};

/// "Ready" for Phase::Ready.
const char* Name(Phase phase);

/// The parts of a PlayerState, one bit each.
enum class Field : std::uint32_t
{
    Connection = 1U << 0,  ///< phase, generation, service, error, missing
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
    AccessorySessions = 1U << 21,  ///< must be last: Fields::All() depends on it
};

/// "track index" for Field::TrackIndex.
std::string Name(Field field);

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

/// The playback position at one moment, from which later positions are extrapolated.
struct Position
{
    std::chrono::milliseconds position{};
    std::chrono::milliseconds duration{};        ///< of the track; 0 when unknown
    std::chrono::steady_clock::time_point at{};  ///< the moment
    bool advancing = false;                      ///< whether playback continues

    /// Returns the position at @p now, at most the track's duration.
    std::chrono::milliseconds At(std::chrono::steady_clock::time_point now) const;
    std::chrono::milliseconds Now() const { return At(std::chrono::steady_clock::now()); }
};
template <>
struct Rows<Position>
{
    static constexpr const char* type = "Position";
    static constexpr const char* name = "position";
    static constexpr std::tuple all{
        Row{"position", &Position::position, "ms", "Position in the track at that moment"},
        Row{"length", &Position::duration, "ms", "Length of the track, 0 when unknown"},
        Row{"advancing", &Position::advancing, "", "Whether the position advances by itself"},
    };
};
bool operator==(const Position& one, const Position& other);

/// The state of the player and the device. Numbers without a name are passed on unchanged.
///
/// Track, index, status, position, modes, queue size, artwork, number and name of devices, CarPlay, CarLife, and
/// foreground app are read from the service when it appears, when a device is attached or removed, and when this
/// session enters one. Only events report the rest, which is unknown until its first event. If the companion daemon
/// runs, fields that earlier events reported are known, and listed in @c remembered.
struct PlayerState
{
    std::uint64_t version = 0;  ///< incremented with each published state
    Phase phase = Phase::Absent;
    std::uint32_t generation = 0;  ///< number of times the service has appeared
    std::string service;           ///< unique bus name of the service that the values come from; empty before the first
    std::optional<Error> error;    ///< why the session is not Ready, or why fields are missing
    Fields missing;                ///< not answered within the deadline, but still awaited; Phase::Ready only
    Fields remembered;  ///< known only from the companion daemon; for calls and accessory sessions: at least one is

    Known<Track> track;         ///< the playing or paused track
    Known<int> trackIndex;      ///< its index in the playing list, from 0; -1 when nothing plays
    Known<PlayStatus> status;   ///< playing, paused, stopped, or winding
    Known<Position> position;   ///< in the track
    Known<Shuffle> shuffle;     ///< shuffle mode
    Known<Repeat> repeat;       ///< repeat mode
    Known<int> queueSize;       ///< entries of the playing list
    Known<PicturePtr> artwork;  ///< of the playing track; null when it has none

    Known<DeviceStatus> device;              ///< whether a device was detected, according to the last event
    Known<int> deviceCount;                  ///< attached devices
    Known<std::string> deviceName;           ///< of the entered device, as its owner named it
    Known<bool> sourceValid;                 ///< whether the device's audio can be used
    Known<CarPlayDevice> carPlay;            ///< the CarPlay device
    Known<DeviceStatus> carLife;             ///< whether a CarLife device was detected
    Known<WirelessCarPlay> wireless;         ///< the wireless CarPlay device
    Known<PairingInfo> pairing;              ///< out-of-band pairing information
    Known<LocationStatus> location;          ///< whether the device requests location information
    Known<std::string> foregroundApp;        ///< bundle identifier; empty if no app is in the foreground
    Known<Battery> battery;                  ///< charge and charging status
    std::map<std::string, PhoneCall> calls;  ///< ongoing calls by UUID; those without one share the key ""
    std::map<std::uint16_t, std::uint8_t> accessorySessions;  ///< open sessions: protocol index by session number

    /// Returns the artwork of the playing track; null when it has none, and while that is unknown.
    PicturePtr Artwork() const { return artwork.value_or(nullptr); }

    /// Returns why a field is unknown; nothing when it is known, and for fields that are never unknown.
    std::optional<Unknown> Why(Field field) const;
};

/// A row of PlayerState, with the bit of its field.
template <class Get>
struct StateRow
{
    Field field;
    const char* name;
    Get get;
    const char* unit;
    const char* meaning;
};
template <class Get>
StateRow(Field, const char*, Get, const char*, const char*) -> StateRow<Get>;

template <>
struct Rows<PlayerState>
{
    static constexpr const char* type = "PlayerState";
    static constexpr const char* name = "state";
    static constexpr std::tuple all{
        StateRow{Field::Track, "track", &PlayerState::track, "", "The playing track"},
        StateRow{Field::TrackIndex, "track_index", &PlayerState::trackIndex, "",
                 "Its index in the playing list, -1 when nothing plays"},
        StateRow{Field::Status, "status", &PlayerState::status, "", "State of playback"},
        StateRow{Field::Position, "position", &PlayerState::position, "", "Position in the track"},
        StateRow{Field::Shuffle, "shuffle", &PlayerState::shuffle, "", "Shuffle mode"},
        StateRow{Field::Repeat, "repeat", &PlayerState::repeat, "", "Repeat mode"},
        StateRow{Field::QueueSize, "queue_size", &PlayerState::queueSize, "", "Entries of the playing list"},
        StateRow{Field::Artwork, "artwork", &PlayerState::artwork, "", "Artwork of the playing track"},
        StateRow{Field::Device, "device", &PlayerState::device, "", "Whether a device was detected"},
        StateRow{Field::DeviceCount, "device_count", &PlayerState::deviceCount, "", "Number of attached devices"},
        StateRow{Field::DeviceName, "device_name", &PlayerState::deviceName, "", "Name that its owner gave the device"},
        StateRow{Field::SourceValid, "source_valid", &PlayerState::sourceValid, "",
                 "Whether the device's audio can be used"},
        StateRow{Field::CarPlay, "carplay", &PlayerState::carPlay, "", "CarPlay device"},
        StateRow{Field::CarLife, "carlife", &PlayerState::carLife, "", "Whether a CarLife device was detected"},
        StateRow{Field::Wireless, "wireless", &PlayerState::wireless, "", "Wireless CarPlay"},
        StateRow{Field::Pairing, "pairing", &PlayerState::pairing, "", "Out-of-band pairing information"},
        StateRow{Field::Location, "location", &PlayerState::location, "",
                 "Whether the device requests location information"},
        StateRow{Field::ForegroundApp, "foreground_app", &PlayerState::foregroundApp, "",
                 "Bundle identifier of the app in the foreground; empty if there is none"},
        StateRow{Field::Battery, "battery", &PlayerState::battery, "", "Battery of the device"},
        StateRow{Field::Calls, "calls", &PlayerState::calls, "", "Ongoing phone calls by UUID"},
        StateRow{Field::AccessorySessions, "accessory_sessions", &PlayerState::accessorySessions, "",
                 "Open accessory sessions: index of the protocol by number"},
    };
};

/// The fields that only events report: no request reads them.
constexpr Fields kReportedByEvents = Field::Device | Field::SourceValid | Field::Wireless | Field::Pairing |
                                     Field::Location | Field::Battery | Field::Calls | Field::AccessorySessions;

using StatePtr = std::shared_ptr<const PlayerState>;

/// Returns the fields in which two states differ.
Fields Differences(const PlayerState& one, const PlayerState& other);
}  // namespace ipodkit

#pragma GCC visibility pop
