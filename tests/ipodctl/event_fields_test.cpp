#include "events/events.h"

#include <gtest/gtest.h>

#include <set>

namespace ctl
{
namespace
{
// Returns one event of each type.
std::vector<Event> AllEvents()
{
    using namespace ipodkit;
    using std::chrono::milliseconds;
    const Track track{"Title", "Artist", "Album", "Genre", milliseconds(5000), 7, 12, 1};
    PhoneCall call;
    call.remote = call.name = call.id = call.addressId = call.label = "x";
    call.status = CallStatus::Ringing;
    call.direction = CallDirection::Incoming;
    call.service = CallService::Telephony;
    call.conferenced = true;
    call.conferenceGroup = std::uint8_t{1};
    call.start = PhoneCall::Time(std::chrono::seconds(1));
    const std::vector<ipodkit::Event> all = {DeviceChanged{DeviceStatus::Detected, true},
                                             PlayStatusChanged{PlayStatus::Playing},
                                             ProgressChanged{milliseconds(1000), milliseconds(5000)},
                                             RepeatChanged{Repeat::One},
                                             ShuffleChanged{Shuffle::Songs},
                                             TrackChanged{3, track},
                                             QueueSizeChanged{12},
                                             SourceValidChanged{true},
                                             ArtworkChanged{true, nullptr, 3, 10, 20},
                                             CarPlayChanged{DeviceStatus::Detected, "F17"},
                                             CallChanged{call},
                                             BatteryChanged{{80, {}}},
                                             LocationChanged{ipodkit::LocationStatus::Requested},
                                             ForegroundAppChanged{"com.example"},
                                             AccessoryOpened{0, 1},
                                             AccessoryClosed{1},
                                             AccessoryData{1, {1}},
                                             CarLifeChanged{DeviceStatus::Detected},
                                             WirelessCarPlayChanged{true, "00:11"},
                                             PairingReceived{"00:11", {1}}};
    std::vector<Event> events;
    for (const ipodkit::Event& each : all) events.push_back(ToEvent(each));
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

TEST(EventFields, RememberTheTrackAcrossOtherEvents)
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
    state.track = ipodkit::Track{"Title", "Artist", "", "", std::chrono::milliseconds(5000), 0, 0, 0};
    state.status = ipodkit::PlayStatus::Paused;
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
