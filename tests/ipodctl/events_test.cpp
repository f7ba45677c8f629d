#include "events/events.h"

#include <gtest/gtest.h>

using namespace ctl;

namespace
{
// What one event looks like.
Event Seen(const std::function<void(IQBXIpodPlayerListener&)>& send)
{
    Event seen{"", {}, ""};
    EventListener listener([&](const Event& event) { seen = event; });
    send(listener);
    return seen;
}
}  // namespace

TEST(Events, ShowATrackWithItsIndex)
{
    const QBXiPodTrackInfo track{"晴天", "周杰伦", "叶惠美", "Pop", 269000, 3, 11, 1};
    const Event event = Seen([&](auto& listener) { listener.OnIpodPlayingTrackChange(2, track); });
    EXPECT_EQ(event.text, "#2 晴天 - 周杰伦 (4:29)");
    EXPECT_EQ(event.fields["track"]["album"], "叶惠美");
    EXPECT_EQ(event.fields["track"]["picture"], true);
}

TEST(Events, ShowOnlyWhatTheServiceSentOfACall)
{
    iPodPhoneCall_t call;
    call.Status = PHONE_CALL_RINGING;
    call.DisplayName = "Anna\033[31m";
    const Event event = Seen([&](auto& listener) { listener.OnIpodPhoneCallChange(call); });
    EXPECT_EQ(event.text, "status ringing, name Anna\uFFFD[31m");
    EXPECT_EQ(event.fields, (Json{{"status", "ringing"}, {"name", "Anna\033[31m"}}));
}

TEST(Events, ShowAnEmptyBatteryMessageAsNothing)
{
    const Event event = Seen([](auto& listener) { listener.OnIpodBatteryChange({}); });
    EXPECT_EQ(event.text, "");
    EXPECT_EQ(event.fields, Json::object());
}

TEST(Events, NameNumbersThatHaveNoName)
{
    const Event event =
        Seen([](auto& listener) { listener.OnPlayStatusChanged(static_cast<iPodPlayerPlayStatus>(99)); });
    EXPECT_EQ(event.text, "unknown:99");
}

TEST(Events, ShowAccessoryDataAsTextAndAsBytes)
{
    std::vector<unsigned char> data{'h', 'i', 0, 0xFF};
    const Event event = Seen([&](auto& listener) { listener.OnIpodReceiveEapData(7, data); });
    EXPECT_EQ(event.text, "session 7, 4 bytes: hi\uFFFD\uFFFD");
    EXPECT_EQ(event.fields["hex"], "686900ff");
}

TEST(Events, CarryATimeAndTheirNameInBothForms)
{
    const Answer answer = ToAnswer({"shuffle", {{"mode", "songs"}}, "songs"});
    EXPECT_EQ(answer.json["event"], "shuffle");
    EXPECT_EQ(answer.json["mode"], "songs");
    EXPECT_EQ(answer.json["time"].get<std::string>().size(), std::string("2026-11-21T02:40:15.123+00:00").size());
    EXPECT_EQ(answer.text.substr(12), "  shuffle         songs");
}
