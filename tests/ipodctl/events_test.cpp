#include "events/events.h"

#include <gtest/gtest.h>

using namespace ctl;

TEST(Events, ShowATrackWithItsIndex)
{
    const ipodkit::Track track{"晴日", "周明轩", "叶间风", "Pop", std::chrono::milliseconds(269000), 3, 11, 1};
    const Event event = ToEvent(ipodkit::TrackChanged{2, track});
    EXPECT_EQ(event.text, "#2 晴日 - 周明轩 (4:29)");
    EXPECT_EQ(event.fields["track"]["album"], "叶间风");
    EXPECT_EQ(event.fields["track"]["picture"], true);
}

TEST(Events, ShowOnlyTheFieldsOfACallThatTheServiceSent)
{
    ipodkit::PhoneCall call;
    call.status = ipodkit::CallStatus::Ringing;
    call.name = "Anna\033[31m";
    const Event event = ToEvent(ipodkit::CallChanged{call});
    EXPECT_EQ(event.text, "status ringing, name Anna\uFFFD[31m");
    EXPECT_EQ(event.fields, (Json{{"status", "ringing"}, {"name", "Anna\033[31m"}}));
}

TEST(Events, ShowAnEmptyBatteryMessageAsNothing)
{
    const Event event = ToEvent(ipodkit::BatteryChanged{});
    EXPECT_EQ(event.text, "");
    EXPECT_EQ(event.fields, Json::object());
}

TEST(Events, NameNumbersThatHaveNoName)
{
    const Event event = ToEvent(ipodkit::PlayStatusChanged{static_cast<ipodkit::PlayStatus>(99)});
    EXPECT_EQ(event.text, "unknown:99");
}

TEST(Events, ShowAccessoryDataAsTextAndAsBytes)
{
    const Event event = ToEvent(ipodkit::AccessoryData{7, {'h', 'i', 0, 0xFF}});
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
