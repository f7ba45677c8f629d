/// @file
/// The events of the service as values: one struct for each of its twenty signals.
///
///     auto events = session->OnEvent("log", [](const Event& event) { puts(SignalName(event)); });
///
/// An event is what the service reported, as it reported it: numbers without a name are passed on, texts are not
/// checked. What follows from it for the player as a whole is in the PlayerState.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <QBXIpodTypes.h>
#include <ipodkit/picture.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// A device was attached or detached. Lists and accessory sessions of the last device are gone.
struct DeviceChanged
{
    QBXAppleDeviceDetectStatus status;
    bool mediaRestart;  ///< whether the service starts over with the device's media
};

struct PlayStatusChanged
{
    iPodPlayerPlayStatus status;
};

/// Playback advanced. Emitted several times a second while something plays.
struct ProgressChanged
{
    std::chrono::milliseconds position;
    std::chrono::milliseconds duration;  ///< of the track
};

struct RepeatChanged
{
    iPodPlayerRepeatStatus mode;
};

struct ShuffleChanged
{
    iPodPlayerShuffleStatus mode;
};

/// Another track plays. Its artwork follows in an ArtworkChanged of its own.
struct TrackChanged
{
    int index;  ///< in the playing list, from 0; -1 when nothing plays
    QBXiPodTrackInfo track;
};

struct QueueSizeChanged
{
    int size;  ///< entries of the playing list
};

/// Whether the audio of the device can be used.
struct SourceValidChanged
{
    bool valid;
};

/// The artwork of the playing track arrived.
struct ArtworkChanged
{
    bool available;               ///< whether the track has artwork
    PicturePtr picture;           ///< null when there is none, or it exceeds SessionOptions::artworkLimit
    std::uint32_t reportedBytes;  ///< size according to the service
    std::uint32_t width;          ///< in pixels according to the service, 0 when unknown
    std::uint32_t height;         ///< in pixels according to the service, 0 when unknown
};

struct CarPlayChanged
{
    QBXAppleDeviceDetectStatus status;
    std::string serialNumber;  ///< empty when there is none
};

/// A phone call began, changed or ended. Members that the service did not send are absent.
struct CallChanged
{
    iPodPhoneCall_t call;
};

/// Members that the service did not send are absent.
struct BatteryChanged
{
    iPodBattery_t battery;
};

/// Whether the device asks for location information.
struct LocationChanged
{
    LocationStatus status;
};

struct ForegroundAppChanged
{
    std::string bundleId;  ///< empty when there is none
};

/// The device opened an accessory session.
struct AccessoryOpened
{
    unsigned char protocol;  ///< index among the announced protocols
    std::uint16_t session;
};

struct AccessoryClosed
{
    std::uint16_t session;
};

/// Bytes for an accessory session.
struct AccessoryData
{
    std::uint16_t sessionLowByte;  ///< the service reports the low 8 bits of the session's number only
    std::vector<unsigned char> bytes;
};

struct CarLifeChanged
{
    QBXAppleDeviceDetectStatus status;
};

struct WirelessCarPlayChanged
{
    bool available;
    std::string deviceAddress;
};

/// Out-of-band pairing information.
struct PairingReceived
{
    std::string bluetoothAddress;
    std::vector<unsigned char> bytes;
};

using Event = std::variant<DeviceChanged, PlayStatusChanged, ProgressChanged, RepeatChanged, ShuffleChanged,
                           TrackChanged, QueueSizeChanged, SourceValidChanged, ArtworkChanged, CarPlayChanged,
                           CallChanged, BatteryChanged, LocationChanged, ForegroundAppChanged, AccessoryOpened,
                           AccessoryClosed, AccessoryData, CarLifeChanged, WirelessCarPlayChanged, PairingReceived>;

/// The name of the signal on the bus: "OnIpodPlayingTrackChange" for TrackChanged.
const char* SignalName(const Event& event);

/// Calls the operation of a core listener that corresponds to the event.
void Deliver(const Event& event, IQBXIpodPlayerListener& listener);
}  // namespace ipodkit

#pragma GCC visibility pop
