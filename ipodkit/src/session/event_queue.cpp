#include "session/event_queue.h"

#include <memory>
#include <tuple>
#include <utility>

namespace ipodkit
{
using Listener = IQBXIpodPlayerListener;

EventQueue::Event EventQueue::Take()
{
    Event event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}

// What an operation takes by value is copied afresh for each listener, as the core does.
template <class... Params, class... Args>
void EventQueue::Add(void (Listener::*event)(Params...), Args&&... args)
{
    const bool wasEmpty = m_events.empty();
    m_events.push_back([event, held = std::make_shared<std::tuple<std::decay_t<Args>...>>(std::forward<Args>(args)...)](
                           Listener& listener)
                       { std::apply([&](auto&... each) { (listener.*event)(each...); }, *held); });
    if (wasEmpty) m_wake();
}

void EventQueue::OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart)
{
    Add(&Listener::OnIpodDeviceStatusChange, status, mediaRestart);
}

void EventQueue::OnPlayStatusChanged(iPodPlayerPlayStatus status)
{
    Add(&Listener::OnPlayStatusChanged, status);
}

void EventQueue::OnPlayProgressChange(int position, int duration)
{
    Add(&Listener::OnPlayProgressChange, position, duration);
}

void EventQueue::OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode)
{
    Add(&Listener::OnIpodRepeatModeChange, mode);
}

void EventQueue::OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode)
{
    Add(&Listener::OnIpodShuffleModeChange, mode);
}

void EventQueue::OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info)
{
    Add(&Listener::OnIpodPlayingTrackChange, index, std::move(info));
}

void EventQueue::OnIpodPlayingListAmountChange(int amount)
{
    Add(&Listener::OnIpodPlayingListAmountChange, amount);
}

void EventQueue::OnIpodSourceValidStatusChange(int valid)
{
    Add(&Listener::OnIpodSourceValidStatusChange, valid);
}

void EventQueue::OnIpodArtworkChange(QBXTrackArtwork artwork)
{
    Add(&Listener::OnIpodArtworkChange, std::move(artwork));
}

void EventQueue::OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber)
{
    Add(&Listener::OnCarplayDeviceDetectStatusChange, status, std::move(serialNumber));
}

void EventQueue::OnIpodPhoneCallChange(const iPodPhoneCall_t& call)
{
    Add(&Listener::OnIpodPhoneCallChange, call);
}

void EventQueue::OnIpodBatteryChange(const iPodBattery_t& battery)
{
    Add(&Listener::OnIpodBatteryChange, battery);
}

void EventQueue::OnIpodLocationStatusChange(LocationStatus status)
{
    Add(&Listener::OnIpodLocationStatusChange, status);
}

void EventQueue::OnIpodAPPBundleNameChange(std::string bundleName)
{
    Add(&Listener::OnIpodAPPBundleNameChange, std::move(bundleName));
}

void EventQueue::OnIpodStartEapSession(unsigned char protocol, unsigned short session)
{
    Add(&Listener::OnIpodStartEapSession, protocol, session);
}

void EventQueue::OnIpodStopEapSession(unsigned short session)
{
    Add(&Listener::OnIpodStopEapSession, session);
}

void EventQueue::OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data)
{
    Add(&Listener::OnIpodReceiveEapData, session, data);
}

void EventQueue::OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status)
{
    Add(&Listener::OnCarlifeDeviceDetectStatusChange, status);
}

void EventQueue::OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress)
{
    Add(&Listener::OnWirelessCarPlayUpdate, available, deviceAddress);
}

void EventQueue::OnOOBPairingInfo(std::string address, const std::vector<unsigned char>& bytes)
{
    Add(&Listener::OnOOBPairingInfo, std::move(address), bytes);
}
}  // namespace ipodkit
