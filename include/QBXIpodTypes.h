/// @file
/// Value types that cross the interface of libipod: what commands take and return, and what events carry.
///
/// All of them are plain values. Copies are independent, nothing here refers to shared memory or to the bus,
/// and no type needs a lock of its own. Text is passed through byte for byte as the service sent it, which
/// is UTF-8 by agreement; the library does not check it.
///
/// The enumerations are unscoped with the underlying type `int`, so that every number that a service sends is
/// a legal value, also one that this header has no name for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// State of playback (`GetPlayStatus`, `OnPlayStatusChanged`).
/// `GetPlayStatus` returns 255, which is no member, when no client exists.
enum iPodPlayerPlayStatus : int
{
    IPOD_PLAY_STATUS_STOPPED = 0,
    IPOD_PLAY_STATUS_PLAYING = 1,
    IPOD_PLAY_STATUS_PAUSED = 2,
    IPOD_PLAY_STATUS_FAST_FORWARD = 3,
    IPOD_PLAY_STATUS_FAST_BACKWARD = 4,
};

/// Order of playback (`SetShuffleMode`, `GetShuffleMode`, `OnIpodShuffleModeChange`).
/// `GetShuffleMode` returns 255, which is no member, when no client exists and when the call fails.
enum iPodPlayerShuffleStatus : int
{
    IPOD_SHUFFLE_OFF = 0,
    IPOD_SHUFFLE_SONGS = 1,
    IPOD_SHUFFLE_ALBUMS = 2,
};

/// Repetition (`SetRepeatMode`, `GetRepeatMode`, `OnIpodRepeatModeChange`).
enum iPodPlayerRepeatStatus : int
{
    IPOD_REPEAT_OFF = 0,
    IPOD_REPEAT_ONE = 1,
    IPOD_REPEAT_ALL = 2,
};

/// What `Play` shall do. The numbers are shared with the service and with the audio-source manager.
enum iPodPlayerPlayOption_e : int
{
    IPOD_PLAY_REQUEST_SOURCE_0 = 1,  ///< ask the audio-source manager for source 10
    IPOD_PLAY_REQUEST_SOURCE_1 = 2,  ///< ask the audio-source manager for source 11
    IPOD_PLAY_START = 3,             ///< start playback on the source that was granted last
    IPOD_PLAY_RESUME = 4,            ///< the same, continuing where playback was interrupted
    IPOD_PLAY_RESTART = 5,           ///< the same, from the start of the track
    IPOD_PLAY_CONFIRM_ACTIVE = 6,    ///< tell the manager that its activation was seen (always source 10)
    IPOD_PLAY_CONFIRM_DEACTIVE = 7,  ///< tell the manager that its deactivation was seen (always source 10)
};

/// Whether a device was found (`OnIpodDeviceStatusChange`, the CarPlay and CarLife detections).
enum QBXAppleDeviceDetectStatus : int
{
    APPLE_DEVICE_DETECTED = 0,
    APPLE_DEVICE_NOT_DETECTED = 1,
    APPLE_DEVICE_UNSUPPORTED = 2,
};

/// Whether the device asks for location information (`OnIpodLocationStatusChange`).
enum LocationStatus : int
{
    LOCATION_STATUS_STOPPED = 0,
    LOCATION_STATUS_REQUESTED = 1,
};

/// One track (`GetCurrentMediaInfo`, `OnIpodPlayingTrackChange`).
///
/// The library carries the eight members unchanged from the service's 1040-byte record; a text ends at its first
/// NUL, and without one in its 256-byte slot it runs on into the next. Only `text1` has a meaning for the library:
/// its log lines print it. The comments give what the services that we know of put there.
struct QBXiPodTrackInfo
{
    std::string text1;        ///< title
    std::string text2;        ///< artist
    std::string text3;        ///< album
    std::string text4;        ///< genre
    std::int32_t value1 = 0;  ///< length in milliseconds
    std::int32_t value2 = 0;  ///< track number within its album, 0 when unknown
    std::int32_t value3 = 0;  ///< number of entries in the playing list
    std::int32_t value4 = 0;  ///< 1 when the track has a picture, else 0
};

/// The picture of a track (`GetPlayingTrackAlbumArtwork`, `OnIpodArtworkChange`).
///
/// The four words are the service's and are carried unchanged; the comments give what the services that we
/// know of put there. The library itself sets them only when no client exists: 1, 0, 0, 0.
struct QBXTrackArtwork
{
    std::uint32_t word1 = 0;           ///< 0 when there is a picture, 1 when there is none
    std::uint32_t word2 = 0;           ///< size of the picture in bytes
    std::uint32_t word3 = 0;           ///< width in pixels, 0 when unknown
    std::uint32_t word4 = 0;           ///< height in pixels, 0 when unknown
    std::vector<unsigned char> image;  ///< the picture as stored in the track: JPEG, PNG, …; empty when none
};

/// State of a phone call, as far as the service told it.
enum PhoneCallStatus : int
{
    PHONE_CALL_DISCONNECTED = 0,
    PHONE_CALL_SENDING = 1,
    PHONE_CALL_RINGING = 2,
    PHONE_CALL_CONNECTING = 3,
    PHONE_CALL_ACTIVE = 4,
    PHONE_CALL_HELD = 5,
    PHONE_CALL_DISCONNECTING = 6,
};

/// Who called whom.
enum PhoneCallDirection : int
{
    PHONE_CALL_DIRECTION_UNKNOWN = 0,
    PHONE_CALL_INCOMING = 1,
    PHONE_CALL_OUTGOING = 2,
};

/// What kind of call it is.
enum CallStateService : int
{
    CALL_SERVICE_UNKNOWN = 0,
    CALL_SERVICE_TELEPHONY = 1,
    CALL_SERVICE_VIDEO = 2,
    CALL_SERVICE_AUDIO = 3,
};

/// Why a call ended.
enum CallStateDisconnectReason : int
{
    CALL_ENDED = 0,
    CALL_DECLINED = 1,
    CALL_FAILED = 2,
};

/// State of one phone call (`OnIpodPhoneCallChange`).
///
/// A member is absent when the service did not send it, or sent a number outside its enumeration.
struct iPodPhoneCall_t
{
    std::optional<std::string> RemoteID;          ///< number or address of the other party
    std::optional<std::string> DisplayName;       ///< its name, as the device shows it
    std::optional<PhoneCallStatus> Status;        ///< how far the call has come
    std::optional<PhoneCallDirection> Direction;  ///< who called
    std::optional<std::string> CallUUID;          ///< identifies the call while it lives
    std::optional<std::string> AddressBookID;     ///< entry of the other party in the device's address book
    std::optional<std::string> Label;             ///< "home", "mobile", …
    std::optional<CallStateService> Service;      ///< kind of call
    std::optional<bool> IsConferenced;            ///< whether the call is part of a conference
    std::optional<std::uint8_t> ConferenceGroup;  ///< low 8 bits of the service's 32
    std::optional<CallStateDisconnectReason> DisconnectReason;  ///< why the call ended
    std::optional<std::uint64_t> StartTimestamp;                ///< seconds since 1970-01-01 UTC
};

/// Whether the battery is being charged.
enum BatteryChargingStatus : int
{
    BATTERY_DISABLED = 0,
    BATTERY_CHARGING = 1,
    BATTERY_CHARGED = 2,
    BATTERY_DISCHARGING = 3,
};

/// State of the device's battery (`OnIpodBatteryChange`). A member is absent when the service did not send it, or sent
/// a number outside its enumeration.
struct iPodBattery_t
{
    std::optional<::BatteryChargingStatus> BatteryChargingStatus;  ///< whether it is being charged
    std::optional<std::uint16_t> BatteryChargeLevel;               ///< percent; low 16 bits of the service's 32
};

/// What the unit tells the device of itself before accessory sessions can be opened (`EapInit`).
/// Each text reaches the service cut to its first 255 bytes.
struct EAPInfo
{
    std::string text1;  ///< accessory protocols, separated by commas, for example "com.example.echo"
    std::string text2;  ///< bundle identifier of the companion app
};

/// Buttons of the accessory remote control (`SetButtonStatus`): 12 bytes, sent in memory order.
/// The words are the service's; the comments give what the services that we know of expect.
struct iPodPlayerButtonControl
{
    std::uint32_t word1;  ///< button number
    std::uint32_t word2;  ///< 1 pressed, 0 released
    std::uint32_t word3;  ///< time held, in milliseconds
};

static_assert(sizeof(iPodPlayerButtonControl) == 12, "SetButtonStatus sends these bytes as they lie in memory");
