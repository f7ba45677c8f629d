#include "events/event_fields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace ctl
{
namespace
{
// Every event once, with all that it can carry.
std::vector<Event> AllEvents()
{
    std::vector<Event> events;
    EventListener listener([&](const Event& event) { events.push_back(event); });
    listener.OnIpodDeviceStatusChange(APPLE_DEVICE_DETECTED, 1);
    listener.OnPlayStatusChanged(IPOD_PLAY_STATUS_PLAYING);
    listener.OnPlayProgressChange(1000, 5000);
    listener.OnIpodRepeatModeChange(static_cast<iPodPlayerRepeatStatus>(1));
    listener.OnIpodShuffleModeChange(static_cast<iPodPlayerShuffleStatus>(1));
    listener.OnIpodPlayingTrackChange(3, {"Title", "Artist", "Album", "Genre", 5000, 7, 12, 1});
    listener.OnIpodPlayingListAmountChange(12);
    listener.OnIpodSourceValidStatusChange(1);
    listener.OnIpodArtworkChange({0, 3, 10, 20, {1, 2, 3}});
    listener.OnCarplayDeviceDetectStatusChange(APPLE_DEVICE_DETECTED, "F17");
    iPodPhoneCall_t call;
    call.RemoteID = call.DisplayName = call.CallUUID = call.AddressBookID = call.Label = "x";
    call.Status = static_cast<PhoneCallStatus>(2);
    call.Direction = static_cast<PhoneCallDirection>(1);
    call.Service = static_cast<CallStateService>(1);
    call.IsConferenced = true;
    call.ConferenceGroup = 1;
    call.StartTimestamp = 1;
    listener.OnIpodPhoneCallChange(call);
    iPodBattery_t battery;
    battery.BatteryChargeLevel = 80;
    listener.OnIpodBatteryChange(battery);
    listener.OnIpodLocationStatusChange(static_cast<LocationStatus>(1));
    listener.OnIpodAPPBundleNameChange("com.example");
    listener.OnIpodStartEapSession(0, 1);
    listener.OnIpodStopEapSession(1);
    std::vector<unsigned char> bytes{1};
    listener.OnIpodReceiveEapData(1, bytes);
    listener.OnCarlifeDeviceDetectStatusChange(APPLE_DEVICE_DETECTED);
    listener.OnWirelessCarPlayUpdate(true, "00:11");
    listener.OnOOBPairingInfo("00:11", bytes);
    return events;
}

TEST(EventFields, HaveNamesThatTemplatesMayUse)
{
    const std::set<std::string> known(EventFieldNames().begin(), EventFieldNames().end());
    EventFields fields;
    for (const Event& event : AllEvents())
    {
        const Json with = fields.With(event);
        for (const auto& [name, value] : with.items()) EXPECT_EQ(known.count(name), 1U) << event.name << " " << name;
    }
}

TEST(EventNames, AreThoseOfAllEvents)
{
    std::set<std::string> seen;
    for (const Event& event : AllEvents()) seen.insert(event.name);
    EXPECT_EQ(seen, std::set<std::string>(EventNames().begin(), EventNames().end()));
}

TEST(EventFields, RememberWhatPlaysOverOtherEvents)
{
    EventFields fields;
    Json last;
    for (const Event& event : AllEvents()) last = fields.With(event);
    EXPECT_EQ(last["event"], "pairing");
    EXPECT_EQ(last["title"], "Title");
    EXPECT_EQ(last["length"], 5000);
    EXPECT_EQ(last["count"], 12);
    EXPECT_EQ(last["battery"], 80);
    EXPECT_EQ(last["call"], "ringing");
    EXPECT_FALSE(last.contains("track"));
}

TEST(EventFields, BeginWithTheStateOfThePlayer)
{
    ipodkit::PlayerState state;
    state.track = QBXiPodTrackInfo{"Title", "Artist", "", "", 5000, 0, 0, 0};
    state.status = IPOD_PLAY_STATUS_PAUSED;
    state.position = ipodkit::Position{std::chrono::milliseconds(1234), std::chrono::milliseconds(5000), {}, false};
    state.deviceName = "Phone";
    EventFields fields;
    fields.Reset(state);
    const Json with = fields.With({"location", {{"status", "stopped"}}, "stopped"});
    EXPECT_EQ(with["title"], "Title");
    EXPECT_EQ(with["position"], 1234);
    EXPECT_EQ(with["state"], "paused");
    EXPECT_EQ(with["device"], "Phone");
    EXPECT_EQ(with["status"], "stopped");
}
}  // namespace
}  // namespace ctl
