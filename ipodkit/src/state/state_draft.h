/// @file
/// The state as events and answers make it, before it is published.
#pragma once

#include <ipodkit/event.h>
#include <ipodkit/player_state.h>

namespace ipodkit
{
/// Context thread only.
class StateDraft
{
public:
    using Clock = std::chrono::steady_clock;

    const PlayerState& State() const { return m_state; }

    /// Forgets everything: a service that has just appeared has no past.
    void Reset() { m_state = {}; }

    /// Forgets what was known of the device.
    void ForgetDevice();

    /// Forgets what ends with the service.
    void ForgetService();

    /// Forgets one field of those that are asked for, when the service does not give its value.
    void Forget(Field field);

    /// Follows an event.
    void Apply(const Event& event);

    /// @name Answers of the service
    /// @{
    void SetTrack(const QBXiPodTrackInfo& track) { m_state.track = track; }
    void SetTrackIndex(int index) { m_state.trackIndex = index; }
    void SetStatus(iPodPlayerPlayStatus status) { On(PlayStatusChanged{status}); }
    void SetPosition(const PlayPosition& position);
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

private:
    void On(const DeviceChanged& event);
    void On(const PlayStatusChanged& event);
    void On(const ProgressChanged& event);
    void On(const RepeatChanged& event) { m_state.repeat = event.mode; }
    void On(const ShuffleChanged& event) { m_state.shuffle = event.mode; }
    void On(const TrackChanged& event);
    void On(const QueueSizeChanged& event);
    void On(const SourceValidChanged& event) { m_state.sourceValid = event.valid; }
    void On(const ArtworkChanged& event) { m_state.artwork = event.picture; }
    void On(const CarPlayChanged& event) { m_state.carPlay = CarPlayDevice{event.status, event.serialNumber}; }
    void On(const CallChanged& event);
    void On(const BatteryChanged& event);
    void On(const LocationChanged& event) { m_state.location = event.status; }
    void On(const ForegroundAppChanged& event) { m_state.foregroundApp = event.bundleId; }
    void On(const AccessoryOpened& event) { m_state.accessorySessions[event.session] = event.protocol; }
    void On(const AccessoryClosed& event) { m_state.accessorySessions.erase(event.session); }
    void On(const AccessoryData&) {}
    void On(const CarLifeChanged& event) { m_state.carLife = event.status; }
    void On(const WirelessCarPlayChanged& event);
    void On(const PairingReceived& event);

    bool Playing() const { return m_state.status == IPOD_PLAY_STATUS_PLAYING; }

    PlayerState m_state;
};
}  // namespace ipodkit
