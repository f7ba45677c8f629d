/// @file
/// A listener that records every event as text.
#pragma once

#include <IQBXIpodPlayerListener.h>

#include <string>
#include <vector>

namespace test
{
/// The recorded events, in order.
using Journal = std::vector<std::string>;

/// Records "NAME.OnPlayProgressChange(1, 2)" for each event: strings in quotes, bytes in hexadecimal, absent members as
/// "-".
class RecordingListener : public IQBXIpodPlayerListener
{
public:
    RecordingListener(Journal& journal, std::string name) : m_journal(journal), m_name(std::move(name)) {}

    void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart) override;
    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override;
    void OnPlayProgressChange(int pos, int duration) override;
    void OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode) override;
    void OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode) override;
    void OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info) override;
    void OnIpodPlayingListAmountChange(int amount) override;
    void OnIpodSourceValidStatusChange(int valid) override;
    void OnIpodArtworkChange(QBXTrackArtwork artwork) override;
    void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber) override;
    void OnIpodPhoneCallChange(const iPodPhoneCall_t& call) override;
    void OnIpodBatteryChange(const iPodBattery_t& battery) override;
    void OnIpodLocationStatusChange(::LocationStatus status) override;
    void OnIpodAPPBundleNameChange(std::string bundleName) override;
    void OnIpodStartEapSession(unsigned char protocol, unsigned short session) override;
    void OnIpodStopEapSession(unsigned short session) override;
    void OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data) override;
    void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status) override;
    void OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress) override;
    void OnOOBPairingInfo(std::string btAddress, const std::vector<unsigned char>& bytes) override;

protected:
    void Write(const std::string& event, const std::vector<std::string>& arguments);

private:
    Journal& m_journal;
    std::string m_name;
};
}  // namespace test
