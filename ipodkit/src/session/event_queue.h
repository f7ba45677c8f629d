/// @file
/// The core's events, taken out from under its listener lock.
#pragma once

#include <IQBXIpodPlayerListener.h>

#include <deque>
#include <functional>

namespace ipodkit
{
/// The one listener that a session registers with the core. It writes each event down and returns; the events are
/// replayed in order, later, when no lock is held. Context thread only.
class EventQueue : public IQBXIpodPlayerListener
{
public:
    using Event = std::function<void(IQBXIpodPlayerListener&)>;

    /// @p wake is called when the queue becomes non-empty; it sees to it that somebody takes the events.
    explicit EventQueue(std::function<void()> wake) : m_wake(std::move(wake)) {}

    bool Empty() const { return m_events.empty(); }
    Event Take();

    void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart) override;
    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override;
    void OnPlayProgressChange(int position, int duration) override;
    void OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode) override;
    void OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode) override;
    void OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info) override;
    void OnIpodPlayingListAmountChange(int amount) override;
    void OnIpodSourceValidStatusChange(int valid) override;
    void OnIpodArtworkChange(QBXTrackArtwork artwork) override;
    void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber) override;
    void OnIpodPhoneCallChange(const iPodPhoneCall_t& call) override;
    void OnIpodBatteryChange(const iPodBattery_t& battery) override;
    void OnIpodLocationStatusChange(LocationStatus status) override;
    void OnIpodAPPBundleNameChange(std::string bundleName) override;
    void OnIpodStartEapSession(unsigned char protocol, unsigned short session) override;
    void OnIpodStopEapSession(unsigned short session) override;
    void OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data) override;
    void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status) override;
    void OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress) override;
    void OnOOBPairingInfo(std::string address, const std::vector<unsigned char>& bytes) override;

private:
    template <class... Params, class... Args>
    void Add(void (IQBXIpodPlayerListener::*event)(Params...), Args&&... args);

    std::function<void()> m_wake;
    std::deque<Event> m_events;
};
}  // namespace ipodkit
