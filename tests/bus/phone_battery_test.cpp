// Phone calls and battery: from message bytes to the debug line and the listeners.
#include <ipod.pb.h>

#include "bus/bus_test.h"
#include "support/variant_text.h"

namespace test
{
namespace
{
using namespace std::string_literals;
using ipod::iPodBattery;
using ipod::iPodPhoneCall;

iPodPhoneCall CompleteCall()
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
    return call;
}

class PhoneBatteryTest : public ServiceTest
{
protected:
    void SetUp() override { Connected().AddListener(&app); }

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
};

// A phone call with one field.
struct Field
{
    const char* name;
    std::string bytes;
    std::string shown;              ///< part of the debug line
    std::size_t position = 0;       ///< of the member that the listener receives
    const char* received = absent;  ///< its value

    static constexpr const char* absent = "-";
};

std::ostream& operator<<(std::ostream& out, const Field& field)
{
    return out << field.name;
}

const Field kFields[] = {
    {"AnEmptyTextIsPresent", "\x12\0"s, "DisplayName:", 1, "\"\""},
    {"BytesThatAreNotUtf8AreKept", "\x0a\x02\xff\xfe", "RemoteID:\xff\xfe", 0, "\"\xff\xfe\""},
    {"PercentSignsAreKept", "\x0a\x06%s%n%s", "RemoteID:%s%n%s", 0, "\"%s%n%s\""},
    {"AFieldOfAnotherWireTypeIsAbsent", "\x08\x01", "RemoteID:null"},
    {"AZeroStatusIsPresent", "\x18\0"s, "Status:0", 2, "0"},
    {"AStatusOf7IsAbsent", "\x18\x07", "Status:null"},
    {"AStatusOf99IsAbsent", "\x18\x63", "Status:null"},
    {"ADirectionOf3IsAbsent", "\x20\x03", "Direction:null"},
    {"AServiceOf4IsAbsent", "\x40\x04", "Service:null"},
    {"NotConferencedIsFalse", "\x48\0"s, "IsConferenced:false", 8, "false"},
    {"AConferencedFlagOf5IsTrue", "\x48\x05", "IsConferenced:true", 8, "true"},
    {"AGroupOf257KeepsItsLow8Bits", "\x50\x81\x02", "ConferenceGroup:1", 9, "1"},
    {"AGroupOf300KeepsItsLow8Bits", "\x50\xac\x02", "ConferenceGroup:44", 9, "44"},
    {"TheLargestGroupKeepsItsLow8Bits", "\x50\xff\xff\xff\xff\x0f", "ConferenceGroup:255", 9, "255"},
    {"AReasonOf3IsAbsent", "\x58\x03", "DisconnectReason:null"},
    {"AZeroTimestampIsPresent", "\x60\0"s, "StartTimestamp:0", 11, "0"},
    {"TheLargestTimestampIsKept", "\x60" + std::string(9, '\xff') + "\x01", "StartTimestamp:18446744073709551615", 11,
     "18446744073709551615"},
};

class PhoneFieldTest : public PhoneBatteryTest, public testing::WithParamInterface<Field>
{
};

TEST_P(PhoneFieldTest, IsLoggedAndDelivered)
{
    const Field& field = GetParam();
    std::vector<std::string> members(12, Field::absent);
    members[field.position] = field.received;

    SendPhoneCall(field.bytes);

    EXPECT_EQ(Shown(field.shown.substr(0, field.shown.find(':'))), field.shown);
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(" + Join(members, ", ") + ")"));
}

INSTANTIATE_TEST_SUITE_P(All, PhoneFieldTest, testing::ValuesIn(kFields),
                         [](const testing::TestParamInfo<Field>& row) { return row.param.name; });

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
    Send(CompleteCall());

    EXPECT_EQ(LogLines()[0],
              "20 CallBack_OnIpodPhoneCallChange: CallBack_OnIpodPhoneCallChange RemoteID:r, DisplayName:d, Status:6, "
              "Direction:2, CallUUID:u, AddressBookID:a, Label:l, Service:3, IsConferenced:true, ConferenceGroup:255, "
              "DisconnectReason:2, StartTimestamp:1700000000");
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPhoneCallChange(\"r\", \"d\", 6, 2, \"u\", \"a\", \"l\", 3, true, 255, "
                                     "2, 1700000000)"));
}

TEST_F(PhoneBatteryTest, EmptyUnparsableAndWrongPayloadsAreDroppedSilently)
{
    const std::string truncated = "\x0a\x05?";
    const std::string deeplyNested = std::string(10000, '\x7b') + std::string(10000, '\x7c');
    for (const std::string& variant :
         {std::string("<@ay []>"), BytesInVariant(truncated), BytesInVariant(deeplyNested), BytesInVariant("\x18"),
          BytesInVariant("\xff\xff\xff"), std::string("<'text'>"), std::string("<[1, 2]>"),
          std::string("<<[byte 8, 1]>>"), std::string("<uint32 7>")})
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

TEST(MessageTest, FieldsHaveTheNumbersOfTheContract)
{
    EXPECT_EQ(CompleteCall().SerializeAsString(),
              "\x0a\x01r\x12\x01"
              "d\x18\x06\x20\x02\x2a\x01u\x32\x01"
              "a\x3a\x01l\x40\x03\x48\x01\x50\xff\x01\x58\x02\x60\x80\xe2\xcf\xaa\x06");
}
}  // namespace
}  // namespace test
