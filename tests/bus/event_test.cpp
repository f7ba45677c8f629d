// Every event, from the signal on the bus to three listeners.
#include "bus/bus_test.h"
#include "support/shared_vectors.h"
#include "support/variant_text.h"

namespace test
{
namespace
{
struct Event
{
    const char* signal;
    std::string body;
    std::string received;              ///< what each listener must receive
    std::vector<std::string> lines;    ///< expected log lines
    std::vector<std::string> formats;  ///< their formats
};

std::ostream& operator<<(std::ostream& out, const Event& event)
{
    return out << event.signal;
}

const std::string kTrack = TrackRecord({"Title", "Artist", "Album", "Genre"}, {240000, 2, -3, 2147483647});
constexpr char kPhoneCallFormat[] =
    "20 CallBack_OnIpodPhoneCallChange: %s RemoteID:%s, DisplayName:%s, Status:%s, Direction:%s, CallUUID:%s, "
    "AddressBookID:%s, Label:%s, Service:%s, IsConferenced:%s, ConferenceGroup:%s, DisconnectReason:%s, "
    "StartTimestamp:%s";
constexpr char kPhoneCallLine[] =
    "20 CallBack_OnIpodPhoneCallChange: CallBack_OnIpodPhoneCallChange RemoteID:123, DisplayName:null, Status:null, "
    "Direction:null, CallUUID:null, AddressBookID:null, Label:null, Service:null, IsConferenced:null, "
    "ConferenceGroup:null, DisconnectReason:null, StartTimestamp:null";

// In the order of the bus contract.
const std::vector<Event> kEvents = {
    {"OnIpodDeviceStatusChange",
     "(200, true)",
     "OnIpodDeviceStatusChange(200, 1)",
     {"40 OnIpodDeviceStatusChange: OnIpodDeviceStatusChange() - 200"},
     {"40 OnIpodDeviceStatusChange: OnIpodDeviceStatusChange() - %d"}},
    {"OnPlayStatusChanged",
     "(1,)",
     "OnPlayStatusChanged(1)",
     {"40 OnPlayStatusChanged: OnPlayStatusChanged() - 1"},
     {"40 OnPlayStatusChanged: OnPlayStatusChanged() - %d"}},
    {"OnPlayProgressChange", "(-61000, 240000)", "OnPlayProgressChange(-61000, 240000)", {}, {}},
    {"OnIpodRepeatModeChange",
     "(2,)",
     "OnIpodRepeatModeChange(2)",
     {"40 OnIpodRepeatModeChange: OnIpodRepeatModeChange() - 2"},
     {"40 OnIpodRepeatModeChange: OnIpodRepeatModeChange() - %d"}},
    {"OnIpodShuffleModeChange",
     "(255,)",
     "OnIpodShuffleModeChange(255)",
     {"40 OnIpodShuffleModeChange: OnIpodRandomModeChange() - 255"},
     {"40 OnIpodShuffleModeChange: OnIpodRandomModeChange() - %d"}},
    {"OnIpodPlayingTrackChange",
     "(7, " + BytesInVariant(kTrack) + ")",
     R"(OnIpodPlayingTrackChange(7, "Title", "Artist", "Album", "Genre", 240000, 2, -3, 2147483647))",
     {"40 OnIpodPlayingTrackChange: OnIpodPlayingTrackChange() - 7, Title"},
     {"40 OnIpodPlayingTrackChange: OnIpodPlayingTrackChange() - %d, %s"}},
    {"OnIpodPlayingListAmountChange", "(1000,)", "OnIpodPlayingListAmountChange(1000)", {}, {}},
    {"OnIpodSourceValidStatusChange",
     "(true,)",
     "OnIpodSourceValidStatusChange(1)",
     {"40 OnIpodSourceValidStatusChange: OnIpodSourceValidStatusChange() - 1"},
     {"40 OnIpodSourceValidStatusChange: OnIpodSourceValidStatusChange() - %d"}},
    {"OnIpodArtworkChange",
     "(" + BytesInVariant(Words({1, 2, 0xffffffff, 4})) + ",)",
     "OnIpodArtworkChange(1, 2, 4294967295, 4, [89 50 4e 47])",
     {"40 OnIpodArtworkChange: OnIpodArtworkChange()"},
     {"40 OnIpodArtworkChange: OnIpodArtworkChange()"}},
    {"OnCarplayDeviceDetectStatusChange",
     "(1, 'SERIAL')",
     "OnCarplayDeviceDetectStatusChange(1, \"SERIAL\")",
     {"40 OnCarplayDeviceDetectStatusChange: OnCarplayDeviceDetectStatusChange() - 1 -SERIAL"},
     {"40 OnCarplayDeviceDetectStatusChange: OnCarplayDeviceDetectStatusChange() - %d -%s"}},
    {"OnIpodPhoneCallChange",
     "(<[byte 10, 3, 0x31, 0x32, 0x33]>,)",
     "OnIpodPhoneCallChange(\"123\", -, -, -, -, -, -, -, -, -, -, -)",
     {kPhoneCallLine, "40 OnIpodPhoneCallChange: OnIpodPhoneCallChange()"},
     {kPhoneCallFormat, "40 OnIpodPhoneCallChange: OnIpodPhoneCallChange()"}},
    {"OnIpodBatteryChange",
     "(<[byte 8, 2, 16, 80]>,)",
     "OnIpodBatteryChange(2, 80)",
     {"20 CallBack_OnIpodBatteryChange: CallBack_OnIpodBatteryChange BatteryChargingStatus:2, BatteryChargeLevel:80"},
     {"20 CallBack_OnIpodBatteryChange: %s BatteryChargingStatus:%s, BatteryChargeLevel:%s"}},
    {"OnIpodLocationStatusChange",
     "(1,)",
     "OnIpodLocationStatusChange(1)",
     {"40 OnIpodLocationStatusChange: OnIpodLocationStatusChange()"},
     {"40 OnIpodLocationStatusChange: OnIpodLocationStatusChange()"}},
    {"OnIpodAppBundleNameChange",
     "('com.example.maps',)",
     "OnIpodAPPBundleNameChange(\"com.example.maps\")",
     {"40 OnIpodAPPBundleNameChange: OnIpodAPPBundleNameChange()"},
     {"40 OnIpodAPPBundleNameChange: OnIpodAPPBundleNameChange()"}},
    {"OnIpodStartEapSession",
     "(3, 65535)",
     "OnIpodStartEapSession(3, 65535)",
     {"40 OnIpodStartEapSession: OnIpodStartEapSession() - protocol:3, session:65535"},
     {"40 OnIpodStartEapSession: OnIpodStartEapSession() - protocol:%d, session:%d"}},
    {"OnIpodStopEapSession",
     "(300,)",
     "OnIpodStopEapSession(300)",
     {"40 OnIpodStopEapSession: OnIpodEapCloseSession() - session:300"},
     {"40 OnIpodStopEapSession: OnIpodEapCloseSession() - session:%d"}},
    {"OnIpodReceiveEapData",
     "(255,)",
     "OnIpodReceiveEapData(255, [00 01 ff])",
     {"40 OnIpodReceiveEapData: OnIpodEapReceiveData() - session:255"},
     {"40 OnIpodReceiveEapData: OnIpodEapReceiveData() - session:%d"}},
    {"OnCarlifeDeviceDetectStatusChange",
     "(2,)",
     "OnCarlifeDeviceDetectStatusChange(2)",
     {"40 OnCarlifeDeviceDetectStatusChange: OnCarlifeDeviceDetectStatusChange() - 2"},
     {"40 OnCarlifeDeviceDetectStatusChange: OnCarlifeDeviceDetectStatusChange() - %d"}},
    {"OnWirelessCarPlayUpdate",
     "(true, '00:11:22:33:44:55')",
     "OnWirelessCarPlayUpdate(true, \"00:11:22:33:44:55\")",
     {"40 OnWirelessCarPlayUpdate: OnWirelessCarPlayUpdate() - 1, 00:11:22:33:44:55"},
     {"40 OnWirelessCarPlayUpdate: OnWirelessCarPlayUpdate() - %d, %s"}},
    {"OnOOBPairingInfo",
     "('aa:bb', [(1,), (0,), (255,)])",
     "OnOOBPairingInfo(\"aa:bb\", [01 00 ff])",
     {"40 OnOOBPairingInfo: OnOOBPairingInfo() - aa:bb, 3"},
     {"40 OnOOBPairingInfo: OnOOBPairingInfo() - %s, %d"}},
};

std::string NameOfEvent(const testing::TestParamInfo<Event>& row)
{
    return row.param.signal;
}

class EventTest : public ServiceTest, public testing::WithParamInterface<Event>
{
protected:
    void SetUp() override
    {
        SharedVectors vectors;
        vectors.SetBytes("VecArtworkChangeBufferShareMemory", {0x89, 0x50, 0x4e, 0x47});
        vectors.SetBytes("VecEapReadBufferShareMemory", {0x00, 0x01, 0xff});
    }
};

TEST_P(EventTest, ReachesThreeListenersInAscendingOrderOfTheirAddresses)
{
    const Event& event = GetParam();
    RecordingListener listeners[] = {{journal, "low"}, {journal, "middle"}, {journal, "high"}};
    IQBXIpodPlayer& player = Connected();
    for (const int i : {1, 2, 0}) player.AddListener(&listeners[i]);

    Deliver(event.signal, event.body);

    EXPECT_THAT(journal, ElementsAre("low." + event.received, "middle." + event.received, "high." + event.received));
    EXPECT_THAT(LogLines(), ElementsAreArray(event.lines));
    EXPECT_THAT(LogFormats(), ElementsAreArray(event.formats));
}

TEST_P(EventTest, WritesItsLogLinesWithoutListeners)
{
    const Event& event = GetParam();
    Connected();

    Deliver(event.signal, event.body);

    EXPECT_THAT(LogLines(), ElementsAreArray(event.lines));
}

TEST_P(EventTest, IsDeliveredOnceToAListenerThatWasAddedTwice)
{
    const Event& event = GetParam();
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&app);
    player.AddListener(&app);

    Deliver(event.signal, event.body);

    EXPECT_THAT(journal, ElementsAre("app." + event.received));
}

TEST_P(EventTest, IsDroppedIfTheBodyHasAnotherType)
{
    const Event& event = GetParam();
    Connected().AddListener(&app);

    DeliverBody(event.signal, g_variant_new("(ds)", 1.5, "what is this"));

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_P(EventTest, ForADestroyedPlayerIsDropped)
{
    const Event& event = GetParam();
    Connected().AddListener(&app);
    QBX_DestroyIpodPlayer();
    ClearLog();

    Deliver(event.signal, event.body);

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, EventTest, testing::ValuesIn(kEvents), NameOfEvent);

class ByteTest : public ServiceTest, public testing::WithParamInterface<int>
{
};

TEST_P(ByteTest, ArrivesUnchangedInEverySignalThatHasOne)
{
    const std::string byte = std::to_string(GetParam());
    const struct
    {
        const char* signal;
        const char* sentAfter;
        const char* receivedAfter;
    } rows[] = {{"OnIpodDeviceStatusChange", "true", ", 1"},
                {"OnPlayStatusChanged", "", ""},
                {"OnIpodRepeatModeChange", "", ""},
                {"OnIpodShuffleModeChange", "", ""},
                {"OnCarplayDeviceDetectStatusChange", "'x'", ", \"x\""},
                {"OnIpodLocationStatusChange", "", ""},
                {"OnIpodStartEapSession", "9", ", 9"},
                {"OnIpodReceiveEapData", "", ", []"},
                {"OnCarlifeDeviceDetectStatusChange", "", ""}};
    Connected().AddListener(&app);
    for (const auto& row : rows)
    {
        Deliver(row.signal, "(" + byte + "," + row.sentAfter + ")");

        EXPECT_EQ(journal.back(), std::string("app.") + row.signal + "(" + byte + row.receivedAfter + ")");
    }
}

INSTANTIATE_TEST_SUITE_P(All, ByteTest, testing::Values(0, 127, 128, 255));
}  // namespace
}  // namespace test
