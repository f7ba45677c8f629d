// Phone calls and battery: from message bytes to the debug line and the listeners.
#include <ipod.pb.h>

#include "bus/bus_test.h"
#include "support/variant_text.h"

namespace test
{
namespace
{
using ipod::iPodBattery;
using ipod::iPodPhoneCall;

class PhoneBatteryTest : public ServiceTest
{
protected:
    void SetUp() override { Connected().AddListener(&listener); }

    void Send(const iPodPhoneCall& call) { SendPhoneCall(call.SerializeAsString()); }
    void Send(const iPodBattery& battery) { SendBattery(battery.SerializeAsString()); }
    void SendPhoneCall(const std::string& bytes) { DeliverText("OnIpodPhoneCallChange", BytesInVariant(bytes)); }
    void SendBattery(const std::string& bytes) { DeliverText("OnIpodBatteryChange", BytesInVariant(bytes)); }

    void DeliverText(const std::string& signal, const std::string& variant) { Deliver(signal, "(" + variant + ",)"); }

    void ExpectBattery(const std::string& line, const std::string& received)
    {
        EXPECT_THAT(LogLines(), ElementsAre("20 CallBack_OnIpodBatteryChange: CallBack_OnIpodBatteryChange " + line));
        EXPECT_THAT(journal, ElementsAre("app.OnIpodBatteryChange(" + received + ")"));
    }

    // The part of the phone call's debug line from this label to the next comma.
    std::string Shown(const std::string& label)
    {
        const std::string line = LogLines().at(0);
        const std::size_t begin = line.find(label + ":");
        return line.substr(begin, line.find(',', begin) - begin);
    }

    Journal journal;
    RecordingListener listener{journal, "app"};
};

TEST_F(PhoneBatteryTest, ACallWithOneMemberLogsNullForTheOthers)
{
    iPodPhoneCall call;
    call.set_remote_id("123");

    Send(call);

    EXPECT_THAT(LogLines(),
                ElementsAre("20 CallBack_OnIpodPhoneCallChange: CallBack_OnIpodPhoneCallChange RemoteID:123, "
                            "DisplayName:null, Status:null, Direction:null, CallUUID:null, AddressBookID:null, "
                            "Label:null, Service:null, IsConferenced:null, ConferenceGroup:null, "
                            "DisconnectReason:null, StartTimestamp:null",
                            "40 OnIpodPhoneCallChange: OnIpodPhoneCallChange()"));
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(\"123\", -, -, -, -, -, -, -, -, -, -, -)"));
}

TEST_F(PhoneBatteryTest, ACompleteCallLogsAndDeliversEveryMember)
{
    iPodPhoneCall call;
    call.set_remote_id("r");
    call.set_display_name("d");
    call.set_status(ipod::PHONE_CALL_STATUS_DISCONNECTING);
    call.set_direction(ipod::PHONE_CALL_DIRECTION_OUTGOING);
    call.set_calluuid("u");
    call.set_addressbookid("a");
    call.set_label("l");
    call.set_service(ipod::CALL_STATE_SERVICE_AUDIO);
    call.set_is_conferenced(true);
    call.set_conference_group(255);
    call.set_disconnect_reason(ipod::CALL_STATE_DISCONNECT_REASON_FAILED);
    call.set_start_timestamp(1700000000);

    Send(call);

    EXPECT_EQ(LogLines()[0],
              "20 CallBack_OnIpodPhoneCallChange: CallBack_OnIpodPhoneCallChange RemoteID:r, DisplayName:d, Status:6, "
              "Direction:2, CallUUID:u, AddressBookID:a, Label:l, Service:3, IsConferenced:true, ConferenceGroup:255, "
              "DisconnectReason:2, StartTimestamp:1700000000");
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(\"r\", \"d\", 6, 2, \"u\", \"a\", \"l\", 3, true, 255, "
                                     "2, 1700000000)"));
}

TEST_F(PhoneBatteryTest, AnEmptyTextIsLoggedEmptyAndIsPresent)
{
    iPodPhoneCall call;
    call.set_display_name("");

    Send(call);

    EXPECT_EQ(Shown("DisplayName"), "DisplayName:");
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(-, \"\", -, -, -, -, -, -, -, -, -, -)"));
}

TEST_F(PhoneBatteryTest, AZeroIsPresent)
{
    iPodPhoneCall call;
    call.set_status(ipod::PHONE_CALL_STATUS_DISCONNECTED);
    call.set_start_timestamp(0);

    Send(call);

    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(-, -, 0, -, -, -, -, -, -, -, -, 0)"));
}

TEST_F(PhoneBatteryTest, NotConferencedIsLoggedAsFalse)
{
    iPodPhoneCall call;
    call.set_is_conferenced(false);

    Send(call);

    EXPECT_EQ(Shown("IsConferenced"), "IsConferenced:false");
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(-, -, -, -, -, -, -, -, false, -, -, -)"));
}

TEST_F(PhoneBatteryTest, AConferencedFlagOtherThanZeroAndOneIsTrue)
{
    SendPhoneCall("\x48\x05");

    EXPECT_EQ(Shown("IsConferenced"), "IsConferenced:true");
}

TEST_F(PhoneBatteryTest, TheLow8BitsOfTheConferenceGroupAreKept)
{
    for (const auto& [sent, kept] : {std::pair(257U, 1), std::pair(300U, 44), std::pair(0xffffffffU, 255)})
    {
        ClearLog();
        journal.clear();
        iPodPhoneCall call;
        call.set_conference_group(sent);

        Send(call);

        EXPECT_EQ(Shown("ConferenceGroup"), "ConferenceGroup:" + std::to_string(kept));
        EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(-, -, -, -, -, -, -, -, -, " +
                                         std::to_string(kept) + ", -, -)"));
    }
}

TEST_F(PhoneBatteryTest, TheLargestTimestampIsLoggedInFull)
{
    iPodPhoneCall call;
    call.set_start_timestamp(18446744073709551615ULL);

    Send(call);

    EXPECT_THAT(LogLines()[0], testing::EndsWith("StartTimestamp:18446744073709551615"));
    EXPECT_THAT(journal,
                ElementsAre("app.OnIpodPhoneCallChange(-, -, -, -, -, -, -, -, -, -, -, 18446744073709551615)"));
}

TEST_F(PhoneBatteryTest, NumbersOutsideTheirEnumerationsAreAbsent)
{
    for (const char* const bytes : {"\x18\x07", "\x18\x09", "\x20\x03", "\x40\x04", "\x58\x03"})
    {
        ClearLog();
        journal.clear();

        SendPhoneCall(bytes);

        EXPECT_THAT(LogLines()[0], testing::Not(testing::ContainsRegex(":[0-9]")));
        EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(-, -, -, -, -, -, -, -, -, -, -, -)"));
    }
}

TEST_F(PhoneBatteryTest, AKnownFieldOfAnotherWireTypeIsAbsent)
{
    SendPhoneCall("\x08\x01");

    EXPECT_EQ(Shown("RemoteID"), "RemoteID:null");
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(-, -, -, -, -, -, -, -, -, -, -, -)"));
}

TEST_F(PhoneBatteryTest, EmptyUnparsableAndWrongPayloadsAreDroppedSilently)
{
    const std::string truncated(
        "\x0a\x05"
        "ab",
        4);
    for (const std::string& variant :
         {std::string("<@ay []>"), BytesInVariant(truncated), BytesInVariant("\x18"), BytesInVariant("\xff\xff\xff"),
          std::string("<'text'>"), std::string("<[1, 2]>"), std::string("<<[byte 8, 1]>>"), std::string("<uint32 7>")})
    {
        DeliverText("OnIpodPhoneCallChange", variant);
        DeliverText("OnIpodBatteryChange", variant);
    }

    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(PhoneBatteryTest, ABatteryLogsStatusAndLevel)
{
    iPodBattery battery;
    battery.set_battery_charging_status(ipod::BATTERY_CHARGING_STATUS_CHARGED);
    battery.set_battery_charge_level(77);

    Send(battery);

    ExpectBattery("BatteryChargingStatus:2, BatteryChargeLevel:77", "2, 77");
}

TEST_F(PhoneBatteryTest, TheLow16BitsOfTheChargeLevelAreKept)
{
    for (const auto& [sent, kept] : {std::pair(65537U, 1), std::pair(70000U, 4464), std::pair(0xffffffffU, 65535)})
    {
        ClearLog();
        journal.clear();
        iPodBattery battery;
        battery.set_battery_charge_level(sent);

        Send(battery);

        const std::string level = std::to_string(kept);
        ExpectBattery("BatteryChargingStatus:null, BatteryChargeLevel:" + level, "-, " + level);
    }
}

TEST_F(PhoneBatteryTest, AChargingStatusOutsideItsEnumerationIsAbsent)
{
    SendBattery("\x08\x04\x10\x32");

    ExpectBattery("BatteryChargingStatus:null, BatteryChargeLevel:50", "-, 50");
}

TEST_F(PhoneBatteryTest, UnknownFieldsAreIgnored)
{
    SendBattery("\x10\x32\x98\x06\x01");

    ExpectBattery("BatteryChargingStatus:null, BatteryChargeLevel:50", "-, 50");
}

TEST(MessageTest, AnEmptyMessageParsesWithoutFields)
{
    iPodPhoneCall call;
    iPodBattery battery;

    EXPECT_TRUE(call.ParseFromArray("", 0));
    EXPECT_TRUE(battery.ParseFromArray("", 0));

    EXPECT_EQ(call.ByteSizeLong(), 0U);
    EXPECT_FALSE(battery.has_battery_charge_level());
}

TEST(MessageTest, GroupsAndLevelsAcceptAny32BitValue)
{
    iPodPhoneCall call;
    iPodBattery battery;

    EXPECT_TRUE(call.ParseFromString("\x50\xff\xff\xff\xff\x0f"));
    EXPECT_TRUE(battery.ParseFromString("\x10\xff\xff\xff\xff\x0f"));

    EXPECT_EQ(call.conference_group(), 0xffffffffU);
    EXPECT_EQ(battery.battery_charge_level(), 0xffffffffU);
}

TEST(MessageTest, AConferencedFlagOtherThanZeroAndOneReadsAsTrue)
{
    iPodPhoneCall call;

    EXPECT_TRUE(call.ParseFromString("\x48\x7f"));

    EXPECT_TRUE(call.is_conferenced());
}

TEST(MessageTest, FieldsHaveTheNumbersOfTheContract)
{
    iPodPhoneCall call;
    call.set_remote_id("1");
    call.set_display_name("2");
    call.set_status(ipod::PHONE_CALL_STATUS_SENDING);
    call.set_direction(ipod::PHONE_CALL_DIRECTION_INCOMING);
    call.set_calluuid("5");
    call.set_addressbookid("6");
    call.set_label("7");
    call.set_service(ipod::CALL_STATE_SERVICE_TELEPHONY);
    call.set_is_conferenced(true);
    call.set_conference_group(10);
    call.set_disconnect_reason(ipod::CALL_STATE_DISCONNECT_REASON_DECLINED);
    call.set_start_timestamp(12);

    EXPECT_EQ(call.SerializeAsString(),
              "\x0a\x01"
              "1\x12\x01"
              "2\x18\x01\x20\x01\x2a\x01"
              "5\x32\x01"
              "6\x3a\x01"
              "7\x40\x01\x48\x01\x50\x0a\x58"
              "\x01\x60\x0c");
}
}  // namespace
}  // namespace test
