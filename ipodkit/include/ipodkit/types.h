/// @file
/// Values of the device: tracks, calls, battery, and the enumerations of their fields.
///
/// Texts contain exactly the bytes that the service sent: UTF-8 by convention, not checked. Every number that the
/// service sends is a valid value of an enumeration, even without a name here.
#pragma once

#include <ipodkit/fields.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
enum class PlayStatus : int
{
    Stopped,
    Playing,
    Paused,
    FastForward,
    FastBackward,
};
template <>
struct EnumNames<PlayStatus>
{
    static constexpr const char* type = "PlayStatus";
    static constexpr const char* names[] = {"stopped", "playing", "paused", "fast-forward", "fast-backward"};
};

enum class Shuffle : int
{
    Off,
    Songs,   ///< songs in random order
    Albums,  ///< albums in random order, the songs of each in their own order
};
template <>
struct EnumNames<Shuffle>
{
    static constexpr const char* type = "Shuffle";
    static constexpr const char* names[] = {"off", "songs", "albums"};
};

enum class Repeat : int
{
    Off,
    One,  ///< the track
    All,  ///< the playing list
};
template <>
struct EnumNames<Repeat>
{
    static constexpr const char* type = "Repeat";
    static constexpr const char* names[] = {"off", "one", "all"};
};

/// Whether a device was detected.
enum class DeviceStatus : int
{
    Detected,
    NotDetected,
    Unsupported,  ///< detected, but not supported
};
template <>
struct EnumNames<DeviceStatus>
{
    static constexpr const char* type = "DeviceStatus";
    static constexpr const char* names[] = {"detected", "not-detected", "unsupported"};
};

/// Whether the device requests location information.
enum class LocationStatus : int
{
    Stopped,
    Requested,
};
template <>
struct EnumNames<LocationStatus>
{
    static constexpr const char* type = "LocationStatus";
    static constexpr const char* names[] = {"stopped", "requested"};
};

enum class ChargingStatus : int
{
    Disabled,
    Charging,
    Charged,
    Discharging,
};
template <>
struct EnumNames<ChargingStatus>
{
    static constexpr const char* type = "ChargingStatus";
    static constexpr const char* names[] = {"disabled", "charging", "charged", "discharging"};
};

enum class CallStatus : int
{
    Disconnected,
    Sending,
    Ringing,
    Connecting,
    Active,
    Held,
    Disconnecting,
};
template <>
struct EnumNames<CallStatus>
{
    static constexpr const char* type = "CallStatus";
    static constexpr const char* names[] = {"disconnected", "sending", "ringing",      "connecting",
                                            "active",       "held",    "disconnecting"};
};

enum class CallDirection : int
{
    Unknown,
    Incoming,
    Outgoing,
};
template <>
struct EnumNames<CallDirection>
{
    static constexpr const char* type = "CallDirection";
    static constexpr const char* names[] = {"unknown", "incoming", "outgoing"};
};

enum class CallService : int
{
    Unknown,
    Telephony,
    Video,
    Audio,  ///< an audio call other than telephony
};
template <>
struct EnumNames<CallService>
{
    static constexpr const char* type = "CallService";
    static constexpr const char* names[] = {"unknown", "telephony", "video", "audio"};
};

/// Why a call ended.
enum class CallEnd : int
{
    Ended,
    Declined,
    Failed,
};
template <>
struct EnumNames<CallEnd>
{
    static constexpr const char* type = "CallEnd";
    static constexpr const char* names[] = {"ended", "declined", "failed"};
};

struct Track
{
    std::string title{};
    std::string artist{};
    std::string album{};
    std::string genre{};
    std::chrono::milliseconds duration{};  ///< 0 when unknown
    int number = 0;                        ///< within its album, from 1; 0 when unknown
    int queueSize = 0;                     ///< entries of the playing list
    int artwork = 0;                       ///< the service's number: 1 when the track has artwork

    bool HasArtwork() const { return artwork == 1; }
};
template <>
struct Rows<Track>
{
    static constexpr const char* type = "Track";
    static constexpr const char* name = "track";
    static constexpr bool complete = true;
    static constexpr std::tuple all{
        Row{"title", &Track::title, "", "Title"},
        Row{"artist", &Track::artist, "", "Artist"},
        Row{"album", &Track::album, "", "Album"},
        Row{"genre", &Track::genre, "", "Genre"},
        Row{"length", &Track::duration, "ms", "Length, 0 when unknown"},
        Row{"number", &Track::number, "", "Number within its album, 0 when unknown"},
        Row{"queue_count", &Track::queueSize, "", "Entries of the playing list"},
        Row{"picture", &Track::HasArtwork, "", "Whether the track has artwork"},
    };
};

/// A phone call of the device. Members that the service has not sent are absent.
struct PhoneCall
{
    using Time = std::chrono::time_point<std::chrono::system_clock, std::chrono::seconds>;

    std::optional<std::string> id;         ///< identifies the call while it lasts; the service's UUID
    std::optional<std::string> remote;     ///< number or address of the other party
    std::optional<std::string> name;       ///< of the other party, as the device shows it
    std::optional<std::string> addressId;  ///< entry of the other party in the device's address book
    std::optional<std::string> label;      ///< "home", "mobile", …
    std::optional<CallStatus> status;
    std::optional<CallDirection> direction;
    std::optional<CallService> service;
    std::optional<bool> conferenced;  ///< whether the call is part of a conference
    std::optional<std::uint8_t> conferenceGroup;
    std::optional<CallEnd> end;  ///< why it ended
    std::optional<Time> start;   ///< in whole seconds

    /// @c id, unless it is empty.
    std::optional<std::string> Uuid() const { return id == std::string() ? std::nullopt : id; }
};
template <>
struct Rows<PhoneCall>
{
    static constexpr const char* type = "PhoneCall";
    static constexpr const char* name = "call";
    static constexpr bool complete = true;
    static constexpr std::tuple all{
        Row{"status", &PhoneCall::status, "", "Progress of the call"},
        Row{"direction", &PhoneCall::direction, "", "Who called whom"},
        Row{"name", &PhoneCall::name, "", "Name of the other party, as the device shows it"},
        Row{"remote", &PhoneCall::remote, "", "Number or address of the other party"},
        Row{"label", &PhoneCall::label, "", "Label of the number, such as home or mobile"},
        Row{"service", &PhoneCall::service, "", "Kind of call"},
        Row{"uuid", &PhoneCall::Uuid, "", "Identifies the call while it lasts"},
        Row{"address_book_id", &PhoneCall::addressId, "", "Entry of the other party in the device's address book"},
        Row{"conferenced", &PhoneCall::conferenced, "", "Whether the call is part of a conference"},
        Row{"conference_group", &PhoneCall::conferenceGroup, "", "Number of the conference, low 8 bits"},
        Row{"end", &PhoneCall::end, "", "Why the call ended"},
        Row{"start", &PhoneCall::start, "s", "Start of the call, in seconds since 1970-01-01 UTC"},
    };
};

/// The battery of the device. Members that the service has not sent are absent.
struct Battery
{
    std::optional<int> percent;  ///< 0 to 100 from a correct service, up to 65535 from others
    std::optional<ChargingStatus> charging;
};
template <>
struct Rows<Battery>
{
    static constexpr const char* type = "Battery";
    static constexpr const char* name = "battery";
    static constexpr bool complete = true;
    static constexpr std::tuple all{
        Row{"percent", &Battery::percent, "%", "Charge"},
        Row{"status", &Battery::charging, "", "Charging status"},
    };
};

struct CarPlayDevice
{
    DeviceStatus status{};
    std::string serialNumber;  ///< empty when there is none
};
template <>
struct Rows<CarPlayDevice>
{
    static constexpr const char* type = "CarPlayDevice";
    static constexpr const char* name = "carplay";
    static constexpr bool complete = true;
    static constexpr std::tuple all{
        Row{"status", &CarPlayDevice::status, "", "Whether a device was detected"},
        Row{"serial", &CarPlayDevice::serialNumber, "", "Its serial number; empty if it has none"},
    };
};

struct WirelessCarPlay
{
    bool available = false;
    std::string deviceAddress;  ///< Bluetooth address
};
template <>
struct Rows<WirelessCarPlay>
{
    static constexpr const char* type = "WirelessCarPlay";
    static constexpr const char* name = "wireless-carplay";
    static constexpr bool complete = true;
    static constexpr std::tuple all{
        Row{"available", &WirelessCarPlay::available, "", "Whether wireless CarPlay is available"},
        Row{"address", &WirelessCarPlay::deviceAddress, "", "Address of the device"},
    };
};

/// Out-of-band pairing information.
struct PairingInfo
{
    std::string bluetoothAddress;
    std::vector<unsigned char> bytes;
};
template <>
struct Rows<PairingInfo>
{
    static constexpr const char* type = "PairingInfo";
    static constexpr const char* name = "pairing";
    static constexpr bool complete = true;
    static constexpr std::tuple all{
        Row{"address", &PairingInfo::bluetoothAddress, "", "Bluetooth address"},
        Row{"data", &PairingInfo::bytes, "hex", "Pairing data"},
    };
};
}  // namespace ipodkit

#pragma GCC visibility pop
