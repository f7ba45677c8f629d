/// @file
/// Value types that cross the interface of libipod: arguments and results of commands, contents of events.
///
/// All of them are plain values: copies are independent, nothing refers to shared memory or to the bus, and no type
/// needs a lock. Text is passed through byte for byte as the service sent it. By convention it is UTF-8; the library
/// does not check it.
///
/// The enumerations are unscoped with the underlying type `int`, so every number that a service sends is a legal value,
/// even if this header defines no name for it: handle unknown numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// State of playback (`GetPlayStatus`, `OnPlayStatusChanged`).
/// `GetPlayStatus` returns 255, which is not a member, when no player was ever built.
enum iPodPlayerPlayStatus : int
{
    IPOD_PLAY_STATUS_STOPPED = 0,        ///< nothing plays
    IPOD_PLAY_STATUS_PLAYING = 1,        ///< the position advances
    IPOD_PLAY_STATUS_PAUSED = 2,         ///< the position does not advance
    IPOD_PLAY_STATUS_FAST_FORWARD = 3,   ///< winds forward
    IPOD_PLAY_STATUS_FAST_BACKWARD = 4,  ///< winds backward
};

/// Order of playback (`SetShuffleMode`, `GetShuffleMode`, `OnIpodShuffleModeChange`).
/// `GetShuffleMode` returns 255, which is not a member, when no player was ever built and when the call fails.
enum iPodPlayerShuffleStatus : int
{
    IPOD_SHUFFLE_OFF = 0,     ///< in the order of the playing list
    IPOD_SHUFFLE_SONGS = 1,   ///< songs in random order
    IPOD_SHUFFLE_ALBUMS = 2,  ///< albums in random order, the songs of each album in album order
};

/// Repetition (`SetRepeatMode`, `GetRepeatMode`, `OnIpodRepeatModeChange`).
/// `GetRepeatMode` returns 0 when no player was ever built and when the call fails.
enum iPodPlayerRepeatStatus : int
{
    IPOD_REPEAT_OFF = 0,  ///< playback ends with the playing list
    IPOD_REPEAT_ONE = 1,  ///< repeats the track
    IPOD_REPEAT_ALL = 2,  ///< repeats the playing list
};

/// Operation requested from `Play`. The numbers are shared with the service and with the audio-source manager.
enum iPodPlayerPlayOption_e : int
{
    IPOD_PLAY_REQUEST_SOURCE_0 = 1,  ///< request source 10 from the audio-source manager
    IPOD_PLAY_REQUEST_SOURCE_1 = 2,  ///< request source 11 from the audio-source manager
    IPOD_PLAY_START = 3,             ///< start playback on the source that was granted last
    IPOD_PLAY_RESUME = 4,            ///< likewise, continuing where playback was interrupted
    IPOD_PLAY_RESTART = 5,           ///< likewise, from the start of the track
    IPOD_PLAY_CONFIRM_ACTIVE = 6,    ///< confirm an activation to the manager (always source 10)
    IPOD_PLAY_CONFIRM_DEACTIVE = 7,  ///< confirm a deactivation to the manager (always source 10)
};

/// Whether a device was found (`OnIpodDeviceStatusChange`, the CarPlay and CarLife detections).
enum QBXAppleDeviceDetectStatus : int
{
    APPLE_DEVICE_DETECTED = 0,      ///< a device was found
    APPLE_DEVICE_NOT_DETECTED = 1,  ///< no device was found
    APPLE_DEVICE_UNSUPPORTED = 2,   ///< a device was found that is not supported
};

/// Whether the device asks for location information (`OnIpodLocationStatusChange`).
enum LocationStatus : int
{
    LOCATION_STATUS_STOPPED = 0,    ///< the device no longer wants location information
    LOCATION_STATUS_REQUESTED = 1,  ///< the device wants location information
};

/// One track (`GetCurrentMediaInfo`, `OnIpodPlayingTrackChange`).
///
/// The library copies the eight members unchanged from the service's 1040-byte record. A text ends at its first NUL;
/// without one in its 256-byte slot it continues into the next slot. The library interprets only `text1`, which its log
/// lines print. The comments describe what known services store in the other members.
struct QBXiPodTrackInfo
{
    std::string text1;        ///< title
    std::string text2;        ///< artist
    std::string text3;        ///< album
    std::string text4;        ///< genre
    std::int32_t value1 = 0;  ///< length in milliseconds
    std::int32_t value2 = 0;  ///< track number within its album, 0 when unknown
    std::int32_t value3 = 0;  ///< number of entries in the playing list
    std::int32_t value4 = 0;  ///< 1 when the track has artwork, else 0
};

/// Artwork of a track (`GetPlayingTrackAlbumArtwork`, `OnIpodArtworkChange`).
///
/// The service defines the four words, which are passed on unchanged; the comments describe what known services store
/// there. The library itself sets them only when no player was ever built: 1, 0, 0, 0.
struct QBXTrackArtwork
{
    std::uint32_t word1 = 0;           ///< 0 when there is an image, 1 when there is none
    std::uint32_t word2 = 0;           ///< size of the image in bytes
    std::uint32_t word3 = 0;           ///< width in pixels, 0 when unknown
    std::uint32_t word4 = 0;           ///< height in pixels, 0 when unknown
    std::vector<unsigned char> image;  ///< the image as stored in the track: JPEG, PNG, …; empty when none
};

/// State of a phone call.
enum PhoneCallStatus : int
{
    PHONE_CALL_DISCONNECTED = 0,   ///< ended
    PHONE_CALL_SENDING = 1,        ///< outgoing, being sent
    PHONE_CALL_RINGING = 2,        ///< ringing
    PHONE_CALL_CONNECTING = 3,     ///< being connected
    PHONE_CALL_ACTIVE = 4,         ///< connected
    PHONE_CALL_HELD = 5,           ///< connected, on hold
    PHONE_CALL_DISCONNECTING = 6,  ///< being ended
};

/// Direction of a phone call.
enum PhoneCallDirection : int
{
    PHONE_CALL_DIRECTION_UNKNOWN = 0,  ///< not known to the device
    PHONE_CALL_INCOMING = 1,           ///< the other party called
    PHONE_CALL_OUTGOING = 2,           ///< the user of the device called
};

/// Kind of a phone call.
enum CallStateService : int
{
    CALL_SERVICE_UNKNOWN = 0,    ///< not known to the device
    CALL_SERVICE_TELEPHONY = 1,  ///< over the telephone network
    CALL_SERVICE_VIDEO = 2,      ///< video call
    CALL_SERVICE_AUDIO = 3,      ///< audio call other than telephony
};

/// Reason for the end of a phone call.
enum CallStateDisconnectReason : int
{
    CALL_ENDED = 0,     ///< ended normally
    CALL_DECLINED = 1,  ///< declined
    CALL_FAILED = 2,    ///< failed
};

/// State of one phone call (`OnIpodPhoneCallChange`); `CallUUID` distinguishes calls.
///
/// A member is absent when the service did not send it, or sent a number outside its enumeration.
struct iPodPhoneCall_t
{
    std::optional<std::string> RemoteID;          ///< number or address of the other party
    std::optional<std::string> DisplayName;       ///< name of the other party, as the device displays it
    std::optional<PhoneCallStatus> Status;        ///< state of the call
    std::optional<PhoneCallDirection> Direction;  ///< who called whom
    std::optional<std::string> CallUUID;          ///< identifies the call during its lifetime
    std::optional<std::string> AddressBookID;     ///< entry of the other party in the device's address book
    std::optional<std::string> Label;             ///< "home", "mobile", …
    std::optional<CallStateService> Service;      ///< kind of call
    std::optional<bool> IsConferenced;            ///< whether the call is part of a conference
    std::optional<std::uint8_t> ConferenceGroup;  ///< number of the conference; low 8 bits of the service's 32
    std::optional<CallStateDisconnectReason> DisconnectReason;  ///< why the call ended
    std::optional<std::uint64_t> StartTimestamp;                ///< seconds since 1970-01-01 UTC
};

/// Charging state of the device's battery.
enum BatteryChargingStatus : int
{
    BATTERY_DISABLED = 0,     ///< charging is disabled
    BATTERY_CHARGING = 1,     ///< charging
    BATTERY_CHARGED = 2,      ///< full
    BATTERY_DISCHARGING = 3,  ///< running on battery
};

/// State of the device's battery (`OnIpodBatteryChange`). A member is absent when the service did not send it, or sent
/// a number outside its enumeration.
struct iPodBattery_t
{
    std::optional<::BatteryChargingStatus> BatteryChargingStatus;  ///< charging state
    std::optional<std::uint16_t> BatteryChargeLevel;               ///< percent; low 16 bits of the service's 32
};

/// The head unit's accessory protocols, announced before accessory sessions can be opened (`EapInit`).
/// Each text is truncated to its first 255 bytes. The library does not interpret the texts; the comments describe what
/// known services expect.
struct EAPInfo
{
    std::string text1;  ///< accessory protocols, separated by commas, for example "com.example.echo"
    std::string text2;  ///< bundle identifier of the companion app
};

/// A button of the accessory remote control (`SetButtonStatus`): 12 bytes, sent in memory order. The service defines
/// the words; the comments describe what known services expect. The contract assigns no button numbers: use those of
/// the service.
struct iPodPlayerButtonControl
{
    std::uint32_t word1;  ///< button number
    std::uint32_t word2;  ///< 1 pressed, 0 released
    std::uint32_t word3;  ///< how long the button was held, in milliseconds
};

static_assert(sizeof(iPodPlayerButtonControl) == 12, "SetButtonStatus sends these bytes in memory order");
