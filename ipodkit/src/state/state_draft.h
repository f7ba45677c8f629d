/// @file
/// The state as events and answers make it, before it is published.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <ipodkit/player_state.h>

#include "pictures/picture_shelf.h"

namespace ipodkit
{
/// Takes events as a listener does. Context thread only.
class StateDraft : public IQBXIpodPlayerListener
{
public:
    using Clock = std::chrono::steady_clock;

    explicit StateDraft(PictureShelf& pictures) : m_pictures(pictures) {}

    const PlayerState& State() const { return m_state; }

    /// Forgets everything: a service that has just appeared has no past.
    void Reset() { m_state = {}; }

    /// Forgets what was known of the device.
    void ForgetDevice();

    /// @name Answers of the service
    /// @{
    void SetTrack(const QBXiPodTrackInfo& track) { m_state.track = track; }
    void SetTrackIndex(int index) { m_state.trackIndex = index; }
    void SetStatus(iPodPlayerPlayStatus status) { OnPlayStatusChanged(status); }
    void SetPosition(const PlayPosition& position) { OnPlayProgressChange(position.position, position.duration); }
    void SetShuffle(iPodPlayerShuffleStatus mode) { m_state.shuffle = mode; }
    void SetRepeat(iPodPlayerRepeatStatus mode) { m_state.repeat = mode; }
    void SetQueueSize(int size) { m_state.queueSize = size; }
    void SetArtwork(PicturePtr picture) { m_state.artwork = std::move(picture); }
    void SetDeviceCount(int count) { m_state.deviceCount = count; }
    void SetDeviceName(const std::string& name) { m_state.deviceName = name; }
    void SetCarPlay(const CarPlayDevice& device) { m_state.carPlay = device; }
    void SetCarLife(QBXAppleDeviceDetectStatus status) { m_state.carLife = status; }
    void SetForegroundApp(const std::string& bundleId) { m_state.foregroundApp = bundleId; }
    /// @}

    void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart) override;
    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override;
    void OnPlayProgressChange(int position, int duration) override;
    void OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode) override { SetRepeat(mode); }
    void OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode) override { SetShuffle(mode); }
    void OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info) override;
    void OnIpodPlayingListAmountChange(int amount) override;
    void OnIpodSourceValidStatusChange(int valid) override { m_state.sourceValid = valid != 0; }
    void OnIpodArtworkChange(QBXTrackArtwork artwork) override;
    void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber) override;
    void OnIpodPhoneCallChange(const iPodPhoneCall_t& call) override;
    void OnIpodBatteryChange(const iPodBattery_t& battery) override;
    void OnIpodLocationStatusChange(LocationStatus status) override { m_state.location = status; }
    void OnIpodAPPBundleNameChange(std::string bundleName) override { SetForegroundApp(bundleName); }
    void OnIpodStartEapSession(unsigned char protocol, unsigned short session) override;
    void OnIpodStopEapSession(unsigned short session) override { m_state.accessorySessions.erase(session); }
    void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status) override { SetCarLife(status); }
    void OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress) override;
    void OnOOBPairingInfo(std::string address, const std::vector<unsigned char>& bytes) override;

private:
    bool Playing() const { return m_state.status == IPOD_PLAY_STATUS_PLAYING; }

    PictureShelf& m_pictures;
    PlayerState m_state;
};
}  // namespace ipodkit
