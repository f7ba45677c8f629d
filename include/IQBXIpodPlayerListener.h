/// @file
/// The events of the iPod service. Override what you need, register the object with the player's
/// AddListener(), and remove it before you destroy it.
///
/// **Changes only.** The library itself emits no events: when InitInstance() has returned true, read the initial state
/// with the player's commands. When the service restarts, the subscription remains, the library repeats nothing, and no
/// event reports the restart; the service decides what to announce then.
///
/// **Threads.** Every event is delivered on the thread that runs the GLib main context that was the thread default when
/// InitInstance() was called. Without a running main loop no event arrives.
///
/// **Inside a callback** the listener lock is held and no other event can be delivered: return soon, and pass long work
/// to another thread. Commands may be called and block as usual. Listeners, the running one included, may be added and
/// removed: one added after the running one (at a higher address) also receives this event, one added before it only
/// the next; one that is removed receives nothing more. Do not throw.
///
/// **Arguments.** Arguments passed by value are copies that belong to the listener. Arguments passed by reference are
/// valid until the callback returns, and are the same object for all listeners.
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

    /// A device was attached or detached. @p mediaRestart is 1 if the service announces that media playback restarts,
    /// else 0; the library only passes it on.
    virtual void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus /*status*/, int /*mediaRestart*/) {}

    /// The play state changed.
    virtual void OnPlayStatusChanged(iPodPlayerPlayStatus /*status*/) {}

    /// Playback advanced: position and length of the track, in milliseconds. The contract fixes no rate; the
    /// simulator sends two a second.
    virtual void OnPlayProgressChange(int /*pos*/, int /*duration*/) {}

    /// The repeat mode changed.
    virtual void OnIpodRepeatModeChange(iPodPlayerRepeatStatus /*mode*/) {}

    /// The shuffle mode changed.
    virtual void OnIpodShuffleModeChange(iPodPlayerShuffleStatus /*mode*/) {}

    /// The playing track changed: its index within the playing list, from 0, and its details.
    virtual void OnIpodPlayingTrackChange(int /*index*/, QBXiPodTrackInfo /*track*/) {}

    /// The number of entries in the playing list changed.
    virtual void OnIpodPlayingListAmountChange(int /*amount*/) {}

    /// The audio source of the device became valid (non-zero) or invalid (0). On 0 the player has already
    /// released the source if it was active.
    virtual void OnIpodSourceValidStatusChange(int /*valid*/) {}

    /// The artwork of the playing track changed. The image is empty when the service supplied none.
    virtual void OnIpodArtworkChange(QBXTrackArtwork /*artwork*/) {}

    /// A CarPlay device was detected or lost; the serial number may be empty.
    virtual void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus /*status*/, std::string /*serialNumber*/)
    {
    }

    /// A phone call began, changed, or ended: its complete state.
    virtual void OnIpodPhoneCallChange(const iPodPhoneCall_t& /*call*/) {}

    /// The state of the device's battery changed.
    virtual void OnIpodBatteryChange(const iPodBattery_t& /*battery*/) {}

    /// The device started or stopped requesting location information.
    virtual void OnIpodLocationStatusChange(LocationStatus /*status*/) {}

    /// Another app came to the foreground of the device: its bundle identifier.
    virtual void OnIpodAPPBundleNameChange(std::string /*bundleName*/) {}

    /// An accessory session was opened: index of its protocol, number of the session.
    virtual void OnIpodStartEapSession(unsigned char /*protocol*/, unsigned short /*session*/) {}

    /// The accessory session of that number was closed.
    virtual void OnIpodStopEapSession(unsigned short /*session*/) {}

    /// Bytes of an accessory session arrived. The service announces them with the low byte of the session's
    /// number only, so this number is 0 to 255 although sessions have 16 bits. All listeners share one vector.
    virtual void OnIpodReceiveEapData(unsigned short /*session*/, std::vector<unsigned char>& /*data*/) {}

    /// A CarLife device was detected or lost.
    virtual void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus /*status*/) {}

    /// Wireless CarPlay became available or unavailable, for the device of that Bluetooth address.
    virtual void OnWirelessCarPlayUpdate(bool /*available*/, const std::string& /*address*/) {}

    /// Out-of-band pairing information arrived: Bluetooth address and the bytes of the information.
    virtual void OnOOBPairingInfo(std::string /*address*/, const std::vector<unsigned char>& /*info*/) {}
};
