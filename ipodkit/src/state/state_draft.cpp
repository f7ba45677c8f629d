#include "state/state_draft.h"

#include <algorithm>

namespace ipodkit
{
namespace
{
using std::chrono::milliseconds;

// Some services report a negative position for a moment.
milliseconds NotNegative(milliseconds time)
{
    return std::max(time, milliseconds(0));
}

// A member that the event does not carry keeps its value.
template <class T>
void Merge(std::optional<T>& known, const std::optional<T>& reported)
{
    if (reported) known = reported;
}

void Merge(iPodPhoneCall_t& known, const iPodPhoneCall_t& reported)
{
    Merge(known.RemoteID, reported.RemoteID);
    Merge(known.DisplayName, reported.DisplayName);
    Merge(known.Status, reported.Status);
    Merge(known.Direction, reported.Direction);
    Merge(known.CallUUID, reported.CallUUID);
    Merge(known.AddressBookID, reported.AddressBookID);
    Merge(known.Label, reported.Label);
    Merge(known.Service, reported.Service);
    Merge(known.IsConferenced, reported.IsConferenced);
    Merge(known.ConferenceGroup, reported.ConferenceGroup);
    Merge(known.DisconnectReason, reported.DisconnectReason);
    Merge(known.StartTimestamp, reported.StartTimestamp);
}
}  // namespace

// Another device has nothing in common with the last one.
void StateDraft::ForgetDevice()
{
    m_state.track.reset();
    m_state.trackIndex.reset();
    m_state.position.reset();
    m_state.queueSize.reset();
    m_state.artwork.reset();
    m_state.deviceName.reset();
    m_state.foregroundApp.reset();
    m_state.battery = {};
    m_state.calls.clear();
    m_state.accessorySessions.clear();
}

void StateDraft::ForgetService()
{
    m_state.calls.clear();
    m_state.accessorySessions.clear();
}

void StateDraft::Forget(Field field)
{
    switch (field)
    {
        case Field::Track:
            return m_state.track.reset();
        case Field::TrackIndex:
            return m_state.trackIndex.reset();
        case Field::Status:
            return m_state.status.reset();
        case Field::Position:
            return m_state.position.reset();
        case Field::Shuffle:
            return m_state.shuffle.reset();
        case Field::Repeat:
            return m_state.repeat.reset();
        case Field::QueueSize:
            return m_state.queueSize.reset();
        case Field::Artwork:
            return m_state.artwork.reset();
        case Field::DeviceCount:
            return m_state.deviceCount.reset();
        case Field::DeviceName:
            return m_state.deviceName.reset();
        case Field::CarPlay:
            return m_state.carPlay.reset();
        case Field::CarLife:
            return m_state.carLife.reset();
        case Field::ForegroundApp:
            return m_state.foregroundApp.reset();
        default:
            return;
    }
}

void StateDraft::Apply(const Event& event)
{
    std::visit([this](const auto& each) { On(each); }, event);
}

void StateDraft::SetPosition(const PlayPosition& position)
{
    On(ProgressChanged{milliseconds(position.position), milliseconds(position.duration)});
}

void StateDraft::On(const DeviceChanged& event)
{
    m_state.device = event.status;
    if (event.status == APPLE_DEVICE_NOT_DETECTED) ForgetDevice();
}

void StateDraft::On(const PlayStatusChanged& event)
{
    m_state.status = event.status;
    if (!m_state.position || m_state.position->advancing == Playing()) return;
    const auto now = Clock::now();
    m_state.position = Position{m_state.position->At(now), m_state.position->duration, now, Playing()};
}

void StateDraft::On(const ProgressChanged& event)
{
    m_state.position = Position{NotNegative(event.position), NotNegative(event.duration), Clock::now(), Playing()};
}

// The artwork of the last track goes with it; the event that announces the new one comes after this one.
void StateDraft::On(const TrackChanged& event)
{
    m_state.trackIndex = event.index;
    m_state.position =
        Position{milliseconds(0), NotNegative(milliseconds(event.track.value1)), Clock::now(), Playing()};
    m_state.track = event.track;
    m_state.artwork.reset();
}

void StateDraft::On(const QueueSizeChanged& event)
{
    if (event.size >= 0) m_state.queueSize = event.size;
}

// Calls without an identifier cannot be distinguished: together they are one call.
void StateDraft::On(const CallChanged& event)
{
    const std::string key = event.call.CallUUID.value_or("");
    if (event.call.Status == PHONE_CALL_DISCONNECTED)
        m_state.calls.erase(key);
    else
        Merge(m_state.calls[key], event.call);
}

void StateDraft::On(const BatteryChanged& event)
{
    Merge(m_state.battery.BatteryChargingStatus, event.battery.BatteryChargingStatus);
    Merge(m_state.battery.BatteryChargeLevel, event.battery.BatteryChargeLevel);
}

void StateDraft::On(const WirelessCarPlayChanged& event)
{
    m_state.wireless = WirelessCarPlay{event.available, event.deviceAddress};
}

void StateDraft::On(const PairingReceived& event)
{
    m_state.pairing = PairingInfo{event.bluetoothAddress, event.bytes};
}
}  // namespace ipodkit
