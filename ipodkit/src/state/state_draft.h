/// @file
/// The state, built from events and answers, before it is published.
#pragma once

#include <ipodkit/commands.h>
#include <ipodkit/event.h>
#include <ipodkit/player_state.h>

#include <utility>

namespace ipodkit
{
/// Context thread only.
class StateDraft
{
public:
    using Clock = std::chrono::steady_clock;

    const PlayerState& State() const { return m_state; }

    /// Resets everything, for a service that has just appeared under this unique name.
    void Reset(const std::string& service);

    /// Replaces the whole state.
    void Replace(const PlayerState& state) { m_state = state; }

    /// Discards everything known about the device.
    void ForgetDevice();

    /// Discards everything that ends with the service.
    void ForgetService();

    /// Makes a field unknown, for the given reason.
    void Forget(Field field, Unknown why, const Error* cause = nullptr);

    /// Applies an event.
    void Apply(const Event& event);

    /// Adopts the fields in @c remembered of @p earlier.
    void Remember(const PlayerState& earlier);

    /// @name Answers of the service
    /// @{
    void SetStatus(PlayStatus status) { On(PlayStatusChanged{status}); }
    void SetPosition(const PlayPosition& position) { On(ProgressChanged{position.position, position.duration}); }
    void SetDeviceCount(int count);
    template <class T>
    void Set(Known<T> PlayerState::*field, T value)
    {
        m_state.*field = std::move(value);
    }
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
    void On(const WirelessCarPlayChanged& event)
    {
        m_state.wireless = WirelessCarPlay{event.available, event.deviceAddress};
    }
    void On(const PairingReceived& event) { m_state.pairing = PairingInfo{event.bluetoothAddress, event.bytes}; }

    Fields StillRemembered(const Event& event) const;
    bool Playing() const { return m_state.status == PlayStatus::Playing; }

    PlayerState m_state;
};

/// Calls @p use with the row of each field that only events report.
template <class Use>
void ForEachEventField(const Use& use)
{
    const auto filtered = [&use](const auto& row)
    {
        if (kReportedByEvents.Has(row.field)) use(row);
    };
    ForEachRow<PlayerState>(filtered);
}
}  // namespace ipodkit
