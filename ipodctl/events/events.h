/// @file
/// The twenty events of the service, as something that can be shown.
#pragma once

#include <IQBXIpodPlayerListener.h>

#include <functional>
#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
struct Event
{
    const char* name;
    Json fields;
    std::string text;  ///< printable
};

/// Turns each event into an Event. Called on the thread that runs the main loop; the sink must not throw.
class EventListener : public IQBXIpodPlayerListener
{
public:
    using Sink = std::function<void(const Event&)>;
    explicit EventListener(Sink sink) : m_sink(std::move(sink)) {}

    void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart) override;
    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override;
    void OnPlayProgressChange(int position, int length) override;
    void OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode) override;
    void OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode) override;
    void OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo track) override;
    void OnIpodPlayingListAmountChange(int amount) override;
    void OnIpodSourceValidStatusChange(int valid) override;
    void OnIpodArtworkChange(QBXTrackArtwork artwork) override;
    void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serial) override;
    void OnIpodPhoneCallChange(const iPodPhoneCall_t& call) override;
    void OnIpodBatteryChange(const iPodBattery_t& battery) override;
    void OnIpodLocationStatusChange(LocationStatus status) override;
    void OnIpodAPPBundleNameChange(std::string bundle) override;
    void OnIpodStartEapSession(unsigned char protocol, unsigned short session) override;
    void OnIpodStopEapSession(unsigned short session) override;
    void OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data) override;
    void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status) override;
    void OnWirelessCarPlayUpdate(bool available, const std::string& address) override;
    void OnOOBPairingInfo(std::string address, const std::vector<unsigned char>& bytes) override;

private:
    Sink m_sink;
};

/// What Event::name may be.
const std::vector<std::string>& EventNames();

/// The event with the local time of now, in both forms.
Answer ToAnswer(const Event& event);
}  // namespace ctl
