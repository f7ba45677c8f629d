/// @file
/// The events of the service as values: one struct for each of its twenty signals.
///
///     auto events = session->OnEvent("log", [](const Event& event) { puts(SignalName(event)); });
///
/// An event has exactly the values that the service sent: numbers without a name are passed on unchanged, and texts are
/// not checked. The PlayerState combines the events into one value.
#pragma once

#include <ipodkit/fields.h>
#include <ipodkit/picture.h>
#include <ipodkit/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// A device was attached or detached. Lists and accessory sessions of the previous device are gone.
struct DeviceChanged
{
    DeviceStatus status{};
    bool mediaRestart = false;  ///< whether the service restarts the media of the device
};
template <>
struct Rows<DeviceChanged>
{
    static constexpr const char* type = "DeviceChanged";
    static constexpr const char* name = "device";
    static constexpr std::tuple all{
        Row{"status", &DeviceChanged::status, "", "Whether a device was detected"},
        Row{"media_restart", &DeviceChanged::mediaRestart, "", "Whether the service restarts the media of the device"},
    };
};

/// Playback started, paused, stopped, or began to wind.
struct PlayStatusChanged
{
    PlayStatus status{};
};
template <>
struct Rows<PlayStatusChanged>
{
    static constexpr const char* type = "PlayStatusChanged";
    static constexpr const char* name = "play-status";
    static constexpr std::tuple all{
        Row{"state", &PlayStatusChanged::status, "", "State of playback"},
    };
};

/// Playback advanced. The contract fixes no rate; the simulator sends two a second.
struct ProgressChanged
{
    std::chrono::milliseconds position{};
    std::chrono::milliseconds duration{};  ///< of the track
};
template <>
struct Rows<ProgressChanged>
{
    static constexpr const char* type = "ProgressChanged";
    static constexpr const char* name = "progress";
    static constexpr std::tuple all{
        Row{"position", &ProgressChanged::position, "ms", "Position in the track"},
        Row{"length", &ProgressChanged::duration, "ms", "Length of the track"},
    };
};

/// The repeat mode changed.
struct RepeatChanged
{
    Repeat mode{};
};
template <>
struct Rows<RepeatChanged>
{
    static constexpr const char* type = "RepeatChanged";
    static constexpr const char* name = "repeat";
    static constexpr std::tuple all{
        Row{"mode", &RepeatChanged::mode, "", "Repeat mode"},
    };
};

/// The shuffle mode changed.
struct ShuffleChanged
{
    Shuffle mode{};
};
template <>
struct Rows<ShuffleChanged>
{
    static constexpr const char* type = "ShuffleChanged";
    static constexpr const char* name = "shuffle";
    static constexpr std::tuple all{
        Row{"mode", &ShuffleChanged::mode, "", "Shuffle mode"},
    };
};

/// The playing track changed. Its artwork follows in a separate ArtworkChanged.
struct TrackChanged
{
    int index = -1;  ///< in the playing list, from 0; -1 when nothing plays
    Track track;
};
template <>
struct Rows<TrackChanged>
{
    static constexpr const char* type = "TrackChanged";
    static constexpr const char* name = "track";
    static constexpr std::tuple all{
        Row{"index", &TrackChanged::index, "", "Index in the playing list, -1 when nothing plays"},
        Row{"track", &TrackChanged::track, "", "The track"},
    };
};

/// The size of the playing list changed.
struct QueueSizeChanged
{
    int size = 0;  ///< entries of the playing list
};
template <>
struct Rows<QueueSizeChanged>
{
    static constexpr const char* type = "QueueSizeChanged";
    static constexpr const char* name = "queue-size";
    static constexpr std::tuple all{
        Row{"count", &QueueSizeChanged::size, "", "Entries of the playing list"},
    };
};

/// The device's audio became valid or invalid.
struct SourceValidChanged
{
    bool valid = false;  ///< whether the device's audio can be used
};
template <>
struct Rows<SourceValidChanged>
{
    static constexpr const char* type = "SourceValidChanged";
    static constexpr const char* name = "source";
    static constexpr std::tuple all{
        Row{"valid", &SourceValidChanged::valid, "", "Whether the device's audio can be used"},
    };
};

/// The artwork of the playing track arrived.
struct ArtworkChanged
{
    bool available = false;           ///< whether the track has artwork
    PicturePtr picture;               ///< null when there is none, or it exceeds SessionOptions::artworkLimit
    std::uint32_t reportedBytes = 0;  ///< size according to the service
    std::uint32_t width = 0;          ///< in pixels according to the service, 0 when unknown
    std::uint32_t height = 0;         ///< in pixels according to the service, 0 when unknown

    /// "image/jpeg", or "none".
    std::string Type() const { return picture == nullptr ? "none" : MediaType(picture->type); }
    std::size_t Bytes() const { return picture == nullptr ? 0 : picture->bytes.size(); }
};
template <>
struct Rows<ArtworkChanged>
{
    static constexpr const char* type = "ArtworkChanged";
    static constexpr const char* name = "artwork";
    static constexpr std::tuple all{
        Row{"type", &ArtworkChanged::Type, "", "Media type according to the first bytes, or none"},
        Row{"bytes", &ArtworkChanged::Bytes, "bytes", "Size"},
        Row{"reported_bytes", &ArtworkChanged::reportedBytes, "bytes", "Size according to the service"},
        Row{"width", &ArtworkChanged::width, "px", "Width according to the service, 0 when unknown"},
        Row{"height", &ArtworkChanged::height, "px", "Height according to the service, 0 when unknown"},
    };
};

/// A CarPlay device was detected or lost.
struct CarPlayChanged
{
    DeviceStatus status{};
    std::string serialNumber;  ///< empty when there is none
};
template <>
struct Rows<CarPlayChanged>
{
    static constexpr const char* type = "CarPlayChanged";
    static constexpr const char* name = "carplay";
    static constexpr std::tuple all{
        Row{"status", &CarPlayChanged::status, "", "Whether a device was detected"},
        Row{"serial", &CarPlayChanged::serialNumber, "", "Its serial number; empty if it has none"},
    };
};

/// A phone call began, changed, or ended. Members that the service did not send are absent.
struct CallChanged
{
    PhoneCall call;
};
template <>
struct Rows<CallChanged>
{
    static constexpr const char* type = "CallChanged";
    static constexpr const char* name = "phone-call";
    static constexpr std::tuple all{Row{"", &CallChanged::call, "", ""}};
};

/// The device's battery changed. Members that the service did not send are absent.
struct BatteryChanged
{
    Battery battery;
};
template <>
struct Rows<BatteryChanged>
{
    static constexpr const char* type = "BatteryChanged";
    static constexpr const char* name = "battery";
    static constexpr std::tuple all{Row{"", &BatteryChanged::battery, "", ""}};
};

/// The device started or stopped requesting location information.
struct LocationChanged
{
    LocationStatus status{};
};
template <>
struct Rows<LocationChanged>
{
    static constexpr const char* type = "LocationChanged";
    static constexpr const char* name = "location";
    static constexpr std::tuple all{
        Row{"status", &LocationChanged::status, "", "Whether the device requests location information"},
    };
};

/// Another app came to the foreground of the device.
struct ForegroundAppChanged
{
    std::string bundleId;  ///< empty when there is none
};
template <>
struct Rows<ForegroundAppChanged>
{
    static constexpr const char* type = "ForegroundAppChanged";
    static constexpr const char* name = "foreground-app";
    static constexpr std::tuple all{
        Row{"bundle", &ForegroundAppChanged::bundleId, "", "Bundle identifier; empty if there is none"},
    };
};

/// The device opened an accessory session.
struct AccessoryOpened
{
    std::uint8_t protocol = 0;  ///< index among the announced protocols
    std::uint16_t session = 0;
};
template <>
struct Rows<AccessoryOpened>
{
    static constexpr const char* type = "AccessoryOpened";
    static constexpr const char* name = "eap-start";
    static constexpr std::tuple all{
        Row{"protocol", &AccessoryOpened::protocol, "", "Index among the announced protocols"},
        Row{"session", &AccessoryOpened::session, "", "Number of the accessory session"},
    };
};

/// The accessory session was closed.
struct AccessoryClosed
{
    std::uint16_t session = 0;
};
template <>
struct Rows<AccessoryClosed>
{
    static constexpr const char* type = "AccessoryClosed";
    static constexpr const char* name = "eap-stop";
    static constexpr std::tuple all{
        Row{"session", &AccessoryClosed::session, "", "Number of the accessory session"},
    };
};

/// Bytes for an accessory session.
struct AccessoryData
{
    std::uint16_t sessionLowByte = 0;  ///< the service reports the low 8 bits of the session's number only
    std::vector<unsigned char> bytes;

    std::size_t Size() const { return bytes.size(); }
};
template <>
struct Rows<AccessoryData>
{
    static constexpr const char* type = "AccessoryData";
    static constexpr const char* name = "eap-data";
    static constexpr std::tuple all{
        Row{"session_low_byte", &AccessoryData::sessionLowByte, "", "Low byte of the number of the accessory session"},
        Row{"bytes", &AccessoryData::Size, "bytes", "Size"},
        Row{"data", &AccessoryData::bytes, "hex", "The data"},
    };
};

/// A CarLife device was detected or lost.
struct CarLifeChanged
{
    DeviceStatus status{};
};
template <>
struct Rows<CarLifeChanged>
{
    static constexpr const char* type = "CarLifeChanged";
    static constexpr const char* name = "carlife";
    static constexpr std::tuple all{
        Row{"status", &CarLifeChanged::status, "", "Whether a device was detected"},
    };
};

/// Wireless CarPlay became available or unavailable.
struct WirelessCarPlayChanged
{
    bool available = false;
    std::string deviceAddress;  ///< Bluetooth address of the device
};
template <>
struct Rows<WirelessCarPlayChanged>
{
    static constexpr const char* type = "WirelessCarPlayChanged";
    static constexpr const char* name = "wireless-carplay";
    static constexpr std::tuple all{
        Row{"available", &WirelessCarPlayChanged::available, "", "Whether wireless CarPlay is available"},
        Row{"address", &WirelessCarPlayChanged::deviceAddress, "", "Address of the device"},
    };
};

/// Out-of-band pairing information arrived.
struct PairingReceived
{
    std::string bluetoothAddress;
    std::vector<unsigned char> bytes;
};
template <>
struct Rows<PairingReceived>
{
    static constexpr const char* type = "PairingReceived";
    static constexpr const char* name = "pairing";
    static constexpr std::tuple all{
        Row{"address", &PairingReceived::bluetoothAddress, "", "Bluetooth address"},
        Row{"data", &PairingReceived::bytes, "hex", "Pairing data"},
    };
};

using Event = std::variant<DeviceChanged, PlayStatusChanged, ProgressChanged, RepeatChanged, ShuffleChanged,
                           TrackChanged, QueueSizeChanged, SourceValidChanged, ArtworkChanged, CarPlayChanged,
                           CallChanged, BatteryChanged, LocationChanged, ForegroundAppChanged, AccessoryOpened,
                           AccessoryClosed, AccessoryData, CarLifeChanged, WirelessCarPlayChanged, PairingReceived>;

/// The name of the signal on the bus: "OnIpodPlayingTrackChange" for TrackChanged.
const char* SignalName(const Event& event);

/// The short name of the event: "track" for TrackChanged.
const char* EventName(const Event& event);
}  // namespace ipodkit

#pragma GCC visibility pop
