/// @file
/// The events of the iPod service. Implement what you need, register the object with the player's
/// AddListener(), and remove it before it goes away.
///
/// **Threads.** Every event is delivered on the thread that runs the GLib main context that was the
/// thread-default one of the thread that called InitInstance(). Without a running main loop no event arrives.
///
/// **Inside a callback** the listener lock is held and no other event can be delivered: return soon, and hand
/// long work to another thread. A listener may remove itself. Commands may be called and block as usual.
/// Do not throw.
///
/// **Arguments.** What is passed by value is a copy of the listener's own. What is passed by reference lives
/// until the callback returns, and is the same object for all listeners.
///
/// Listeners are called in ascending order of their addresses. The order of the operations is part of the
/// published interface: append, never insert.
#pragma once

#include <QBXIpodTypes.h>

#include <string>
#include <vector>

/// Receives the events; every operation has an empty body.
class IQBXIpodPlayerListener
{
public:
    virtual ~IQBXIpodPlayerListener() = default;

    /// A device was attached or went away. The second value is 1 when media playback starts anew, else 0.
    virtual void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus, int) {}

    /// The play state changed.
    virtual void OnPlayStatusChanged(iPodPlayerPlayStatus) {}

    /// Playback advanced: position and length of the track, in milliseconds.
    virtual void OnPlayProgressChange(int, int) {}

    /// The repeat mode changed.
    virtual void OnIpodRepeatModeChange(iPodPlayerRepeatStatus) {}

    /// The shuffle mode changed.
    virtual void OnIpodShuffleModeChange(iPodPlayerShuffleStatus) {}

    /// Another track plays: its index within the playing list, from 0, and its details.
    virtual void OnIpodPlayingTrackChange(int, QBXiPodTrackInfo) {}

    /// The playing list has a new number of entries.
    virtual void OnIpodPlayingListAmountChange(int) {}

    /// The audio source of the device became valid (non-zero) or invalid (0). On 0 the player has already
    /// released the source if it was active.
    virtual void OnIpodSourceValidStatusChange(int) {}

    /// The playing track has a picture.
    virtual void OnIpodArtworkChange(QBXTrackArtwork) {}

    /// A CarPlay device was detected or lost; the text is its serial number.
    virtual void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus, std::string) {}

    /// A phone call began, changed or ended.
    virtual void OnIpodPhoneCallChange(const iPodPhoneCall_t&) {}

    /// The state of the battery changed.
    virtual void OnIpodBatteryChange(const iPodBattery_t&) {}

    /// The device asks for location information, or no longer does.
    virtual void OnIpodLocationStatusChange(LocationStatus) {}

    /// Another app came to the foreground of the device: its bundle identifier.
    virtual void OnIpodAPPBundleNameChange(std::string) {}

    /// An accessory session was opened: index of its protocol, number of the session.
    virtual void OnIpodStartEapSession(unsigned char, unsigned short) {}

    /// The accessory session of that number was closed.
    virtual void OnIpodStopEapSession(unsigned short) {}

    /// Bytes of an accessory session arrived. The service announces them with the low byte of the session's
    /// number only, so this number is 0 to 255 although sessions have 16 bits. All listeners share one vector.
    virtual void OnIpodReceiveEapData(unsigned short, std::vector<unsigned char>&) {}

    /// A CarLife device was detected or lost.
    virtual void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus) {}

    /// Wireless CarPlay became available or unavailable; the text is the device's Bluetooth address.
    virtual void OnWirelessCarPlayUpdate(bool, const std::string&) {}

    /// Out-of-band pairing information arrived: Bluetooth address and the bytes of the information.
    virtual void OnOOBPairingInfo(std::string, const std::vector<unsigned char>&) {}
};
