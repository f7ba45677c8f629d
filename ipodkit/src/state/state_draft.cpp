#include "state/state_draft.h"

#include <algorithm>

namespace ipodkit
{
namespace
{
using std::chrono::milliseconds;

milliseconds NotNegative(int value)
{
    return milliseconds(std::max(value, 0));
}

// A member that the event does not carry keeps its value.
template <class T>
void Merge(std::optional<T>& known, const std::optional<T>& told)
{
    if (told) known = told;
}

void Merge(iPodPhoneCall_t& known, const iPodPhoneCall_t& told)
{
    Merge(known.RemoteID, told.RemoteID);
    Merge(known.DisplayName, told.DisplayName);
    Merge(known.Status, told.Status);
    Merge(known.Direction, told.Direction);
    Merge(known.CallUUID, told.CallUUID);
    Merge(known.AddressBookID, told.AddressBookID);
    Merge(known.Label, told.Label);
    Merge(known.Service, told.Service);
    Merge(known.IsConferenced, told.IsConferenced);
    Merge(known.ConferenceGroup, told.ConferenceGroup);
    Merge(known.DisconnectReason, told.DisconnectReason);
    Merge(known.StartTimestamp, told.StartTimestamp);
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

void StateDraft::OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int)
{
    m_state.device = status;
    if (status == APPLE_DEVICE_NOT_DETECTED) ForgetDevice();
}

void StateDraft::OnPlayStatusChanged(iPodPlayerPlayStatus status)
{
    m_state.status = status;
    if (!m_state.position || m_state.position->advancing == Playing()) return;
    const auto now = Clock::now();
    m_state.position = Position{m_state.position->At(now), m_state.position->duration, now, Playing()};
}

void StateDraft::OnPlayProgressChange(int position, int duration)
{
    m_state.position = Position{NotNegative(position), NotNegative(duration), Clock::now(), Playing()};
}

// The picture of the last track goes with it; the event that announces the new one comes after this one.
void StateDraft::OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info)
{
    m_state.trackIndex = index;
    m_state.position = Position{milliseconds(0), NotNegative(info.value1), Clock::now(), Playing()};
    m_state.track = std::move(info);
    m_state.artwork.reset();
}

void StateDraft::OnIpodPlayingListAmountChange(int amount)
{
    if (amount >= 0) SetQueueSize(amount);
}

void StateDraft::OnIpodArtworkChange(QBXTrackArtwork artwork)
{
    SetArtwork(artwork.word1 == 0 ? m_pictures.Put(std::move(artwork.image)) : nullptr);
}

void StateDraft::OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber)
{
    SetCarPlay({status, std::move(serialNumber)});
}

// A call without an identifier cannot be followed.
void StateDraft::OnIpodPhoneCallChange(const iPodPhoneCall_t& call)
{
    if (!call.CallUUID || call.CallUUID->empty()) return;
    if (call.Status == PHONE_CALL_DISCONNECTED)
        m_state.calls.erase(*call.CallUUID);
    else
        Merge(m_state.calls[*call.CallUUID], call);
}

void StateDraft::OnIpodBatteryChange(const iPodBattery_t& battery)
{
    Merge(m_state.battery.BatteryChargingStatus, battery.BatteryChargingStatus);
    Merge(m_state.battery.BatteryChargeLevel, battery.BatteryChargeLevel);
}

void StateDraft::OnIpodStartEapSession(unsigned char protocol, unsigned short session)
{
    m_state.accessorySessions[session] = protocol;
}

void StateDraft::OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress)
{
    m_state.wireless = WirelessCarPlay{available, deviceAddress};
}

void StateDraft::OnOOBPairingInfo(std::string address, const std::vector<unsigned char>& bytes)
{
    m_state.pairing = PairingInfo{std::move(address), bytes};
}
}  // namespace ipodkit
