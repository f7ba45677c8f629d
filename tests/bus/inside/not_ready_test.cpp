// Commands and events before any client was built in the process. Applications cannot reach this state, because they
// need a client to call. This program links the library's objects and clears the flag.
#include <sys/stat.h>

#include <algorithm>

#include "QBXIpod_MediaPlayer_Client.h"
#include "bus/bus_test.h"
#include "bus/command_table.h"
#include "internal/module_state.h"
#include "support/fake_source.h"
#include "support/shared_vectors.h"

namespace test
{
namespace
{
std::string NameOf(const testing::TestParamInfo<Command>& info)
{
    return info.param.name;
}

class NotReadyTest : public ServiceTest
{
protected:
    // Connected, so that a call or an event that gets through would be noticed.
    QBXIpod_MediaPlayer_Client& NotReady()
    {
        auto& client = static_cast<QBXIpod_MediaPlayer_Client&>(Connected());
        qbx::clientCreated = 0;
        return client;
    }

    void DeliverEventsThatLogFirst()
    {
        Deliver("OnIpodDeviceStatusChange", "(1, true)");
        Deliver("OnIpodRepeatModeChange", "(1,)");
        Deliver("OnIpodShuffleModeChange", "(1,)");
        Deliver("OnIpodPlayingTrackChange", "(1, <@ay []>)");
        Deliver("OnIpodSourceValidStatusChange", "(false,)");
        Deliver("OnIpodArtworkChange", "(<@ay []>,)");
        Deliver("OnCarplayDeviceDetectStatusChange", "(1, 's')");
        Deliver("OnIpodPhoneCallChange", "(<[byte 10, 1, 49]>,)");
        Deliver("OnIpodBatteryChange", "(<[byte 8, 1]>,)");
        Deliver("OnIpodLocationStatusChange", "(1,)");
        Deliver("OnIpodAppBundleNameChange", "('a',)");
        Deliver("OnIpodStartEapSession", "(1, 2)");
        Deliver("OnIpodStopEapSession", "(2,)");
        Deliver("OnIpodReceiveEapData", "(2,)");
        Deliver("OnCarlifeDeviceDetectStatusChange", "(1,)");
        Deliver("OnWirelessCarPlayUpdate", "(true, 'a')");
        Deliver("OnOOBPairingInfo", "('a', [])");
    }
};

std::vector<Command> CommandsThatNeedAClient()
{
    std::vector<Command> commands = Commands();
    const auto end = std::remove_if(commands.begin(), commands.end(),
                                    [](const Command& command) { return command.notReady == kUnset; });
    return {commands.begin(), end};
}

class CommandNotReadyTest : public NotReadyTest, public testing::WithParamInterface<Command>
{
};

TEST_P(CommandNotReadyTest, ReturnsItsValueWithoutACall)
{
    const Command& command = GetParam();

    const std::string result = command.call(NotReady());

    EXPECT_EQ(result, command.notReady);
    EXPECT_THAT(service.Calls(), IsEmpty());
    EXPECT_THAT(LogLines(), ElementsAreArray(ExpectedLinesNotReady(command)));
}

INSTANTIATE_TEST_SUITE_P(All, CommandNotReadyTest, testing::ValuesIn(CommandsThatNeedAClient()), NameOf);

TEST(NotReady, EndsWithTheFirstClientEvenIfItCannotAttachTheSegments)
{
    ASSERT_EQ(mkfifo((std::string("/dev/shm/") + kListSegmentName).c_str(), 0600), 0);

    EXPECT_THROW(QBXIpod_MediaPlayer_Client(), boost::interprocess::interprocess_exception);

    EXPECT_EQ(qbx::clientCreated, 1);
}

TEST_F(NotReadyTest, PlayReturnsZeroWithoutALogLine)
{
    QBXIpod_MediaPlayer_Client& client = NotReady();

    for (int option = 0; option <= 8; ++option) EXPECT_EQ(client.Play(iPodPlayerPlayOption_e(option), 0), 0);

    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_THAT(Sources().calls, IsEmpty());
    EXPECT_THAT(service.Calls(), IsEmpty());
}

TEST_F(NotReadyTest, CarPlayConnectStatusNotifyMakesNoCall)
{
    NotReady().CarPlayConnectStatusNotify(1, 1);
    qbx::clientCreated = 1;
    service.Answer("Seek", "()");
    QBX_GetIpodPlayer()->Seek(0);

    EXPECT_THAT(service.Calls(), ElementsAre("Seek(0,)"));
}

TEST_F(NotReadyTest, GetCurrentMediaInfoStillCalls)
{
    service.Answer("GetCurrentMediaInfo", "(<@ay []>,)");

    NotReady().GetCurrentMediaInfo();

    EXPECT_THAT(service.Calls(), ElementsAre("GetCurrentMediaInfo()"));
}

TEST_F(NotReadyTest, EapWriteLeavesTheWriteBufferUnchanged)
{
    SharedVectors().SetBytes("VecEapWriteBufferShareMemory", {9, 9});
    std::vector<unsigned char> data = {1};

    NotReady().EapWrite(1, data);

    EXPECT_THAT(SharedVectors().Bytes("VecEapWriteBufferShareMemory"), ElementsAre(9, 9));
}

TEST_F(NotReadyTest, EventsThatLogFirstWriteTheirLineAndReachNoListener)
{
    NotReady().AddListener(&app);

    DeliverEventsThatLogFirst();

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(Sources().calls, IsEmpty());
    EXPECT_THAT(
        LogLines(),
        ElementsAre("40 OnIpodDeviceStatusChange: OnIpodDeviceStatusChange() - 1",
                    "40 OnIpodRepeatModeChange: OnIpodRepeatModeChange() - 1",
                    "40 OnIpodShuffleModeChange: OnIpodRandomModeChange() - 1",
                    "40 OnIpodPlayingTrackChange: OnIpodPlayingTrackChange() - 1, ",
                    "40 OnIpodSourceValidStatusChange: OnIpodSourceValidStatusChange() - 0",
                    "40 OnIpodArtworkChange: OnIpodArtworkChange()",
                    "40 OnCarplayDeviceDetectStatusChange: OnCarplayDeviceDetectStatusChange() - 1 -s",
                    testing::StartsWith("20 CallBack_OnIpodPhoneCallChange: CallBack_OnIpodPhoneCallChange RemoteID:1"),
                    "40 OnIpodPhoneCallChange: OnIpodPhoneCallChange()",
                    testing::StartsWith("20 CallBack_OnIpodBatteryChange: CallBack_OnIpodBatteryChange "),
                    "40 OnIpodLocationStatusChange: OnIpodLocationStatusChange()",
                    "40 OnIpodAPPBundleNameChange: OnIpodAPPBundleNameChange()",
                    "40 OnIpodStartEapSession: OnIpodStartEapSession() - protocol:1, session:2",
                    "40 OnIpodStopEapSession: OnIpodEapCloseSession() - session:2",
                    "40 OnIpodReceiveEapData: OnIpodEapReceiveData() - session:2",
                    "40 OnCarlifeDeviceDetectStatusChange: OnCarlifeDeviceDetectStatusChange() - 1",
                    "40 OnWirelessCarPlayUpdate: OnWirelessCarPlayUpdate() - 1, a",
                    "40 OnOOBPairingInfo: OnOOBPairingInfo() - a, 0"));
}

TEST_F(NotReadyTest, EventsThatCheckFirstWriteNothingAndReachNoListener)
{
    NotReady().AddListener(&app);

    Deliver("OnPlayStatusChanged", "(1,)");
    Deliver("OnPlayProgressChange", "(1, 2)");
    Deliver("OnIpodPlayingListAmountChange", "(1,)");

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}
}  // namespace
}  // namespace test
