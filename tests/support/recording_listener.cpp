#include "support/recording_listener.h"

#include <optional>

#include "support/text.h"

namespace test
{
namespace
{
template <class T>
std::string OrAbsent(const std::optional<T>& member)
{
    return member ? Text(*member) : "-";
}
}  // namespace

void RecordingListener::Write(const std::string& event, const std::vector<std::string>& arguments)
{
    m_journal.push_back(m_name + "." + event + "(" + Join(arguments, ", ") + ")");
}

void RecordingListener::OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart)
{
    Write(__func__, {Text(status), Text(mediaRestart)});
}

void RecordingListener::OnPlayStatusChanged(iPodPlayerPlayStatus status)
{
    Write(__func__, {Text(status)});
}

void RecordingListener::OnPlayProgressChange(int pos, int duration)
{
    Write(__func__, {Text(pos), Text(duration)});
}

void RecordingListener::OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode)
{
    Write(__func__, {Text(mode)});
}

void RecordingListener::OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode)
{
    Write(__func__, {Text(mode)});
}

void RecordingListener::OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info)
{
    Write(__func__, {Text(index), Text(info)});
}

void RecordingListener::OnIpodPlayingListAmountChange(int amount)
{
    Write(__func__, {Text(amount)});
}

void RecordingListener::OnIpodSourceValidStatusChange(int valid)
{
    Write(__func__, {Text(valid)});
}

void RecordingListener::OnIpodArtworkChange(QBXTrackArtwork artwork)
{
    Write(__func__, {Text(artwork)});
}

void RecordingListener::OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber)
{
    Write(__func__, {Text(status), Text(serialNumber)});
}

void RecordingListener::OnIpodPhoneCallChange(const iPodPhoneCall_t& call)
{
    Write(__func__, {OrAbsent(call.RemoteID), OrAbsent(call.DisplayName), OrAbsent(call.Status),
                     OrAbsent(call.Direction), OrAbsent(call.CallUUID), OrAbsent(call.AddressBookID),
                     OrAbsent(call.Label), OrAbsent(call.Service), OrAbsent(call.IsConferenced),
                     OrAbsent(call.ConferenceGroup), OrAbsent(call.DisconnectReason), OrAbsent(call.StartTimestamp)});
}

void RecordingListener::OnIpodBatteryChange(const iPodBattery_t& battery)
{
    Write(__func__, {OrAbsent(battery.BatteryChargingStatus), OrAbsent(battery.BatteryChargeLevel)});
}

void RecordingListener::OnIpodLocationStatusChange(LocationStatus status)
{
    Write(__func__, {Text(status)});
}

void RecordingListener::OnIpodAPPBundleNameChange(std::string bundleName)
{
    Write(__func__, {Text(bundleName)});
}

void RecordingListener::OnIpodStartEapSession(unsigned char protocol, unsigned short session)
{
    Write(__func__, {Text(protocol), Text(session)});
}

void RecordingListener::OnIpodStopEapSession(unsigned short session)
{
    Write(__func__, {Text(session)});
}

void RecordingListener::OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data)
{
    Write(__func__, {Text(session), Text(data)});
}

void RecordingListener::OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status)
{
    Write(__func__, {Text(status)});
}

void RecordingListener::OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress)
{
    Write(__func__, {Text(available), Text(deviceAddress)});
}

void RecordingListener::OnOOBPairingInfo(std::string btAddress, const std::vector<unsigned char>& bytes)
{
    Write(__func__, {Text(btAddress), Text(bytes)});
}
}  // namespace test
