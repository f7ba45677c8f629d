// Play() and the audio-source manager, and the release of a source that the service reports as invalid.
#include "bus/bus_test.h"
#include "support/fake_source.h"

namespace test
{
namespace
{
using PlayTest = ServiceTest;
using PlayWithoutServiceTest = NoServiceTest;
using PlayWithoutProxyTest = ClientTest;

int Play(IQBXIpodPlayer& player, int option, int confirmArg = 0)
{
    return player.Play(static_cast<iPodPlayerPlayOption_e>(option), confirmArg);
}

// Requests the option's source, which is granted, and clears log and calls.
void Grant(IQBXIpodPlayer& player, int option)
{
    Sources().requestResult = 1;
    Play(player, option);
    Sources().calls.clear();
    ClearLog();
}

TEST_F(PlayTest, StartingBeforeASourceWasRequestedLogsOnlyTheOption)
{
    IQBXIpodPlayer& player = Connected();

    EXPECT_EQ(Play(player, 3), 0);

    EXPECT_THAT(LogLines(), ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:3)."));
    EXPECT_THAT(LogFormats(), ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:%d)."));
    EXPECT_THAT(Sources().calls, IsEmpty());
    EXPECT_THAT(service.Calls(), IsEmpty());
}

TEST_F(PlayTest, AGrantedRequestReturnsTheManagersCodeWithoutACall)
{
    IQBXIpodPlayer& player = Connected();
    Sources().requestResult = 2;

    EXPECT_EQ(Play(player, 1, 55), 2);

    EXPECT_THAT(Sources().calls, ElementsAre("Request(10, 0)"));
    EXPECT_THAT(service.Calls(), IsEmpty());
    EXPECT_THAT(LogLines(),
                ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:1).",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play() -- source SID_IPOD_0, bReqSrc = 1.",
                            "40 Play:  Request source success", "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=2"));
    EXPECT_THAT(LogFormats(),
                ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:%d).",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play() -- source %s, bReqSrc = %d.",
                            "40 Play:  Request source success", "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=%d"));
}

TEST_F(PlayTest, TheSecondSourceIsRequestedWithOptionTwo)
{
    IQBXIpodPlayer& player = Connected();

    EXPECT_EQ(Play(player, 2), 1);

    EXPECT_THAT(Sources().calls, ElementsAre("Request(11, 0)"));
    EXPECT_EQ(CountLogLines("40 Play: QBXIpod_MediaPlayer_Client::Play() -- source SID_IPOD_1, bReqSrc = 1."), 1U);
}

TEST_F(PlayTest, ARefusedRequestReturnsTheManagersCodeAndKeepsTheSource)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 1);
    for (const int code : {0, 3, -1})
    {
        Sources().requestResult = code;
        ClearLog();

        EXPECT_EQ(Play(player, 2), code);

        EXPECT_THAT(LogLines(),
                    ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:2).",
                                "40 Play: QBXIpod_MediaPlayer_Client::Play() -- source SID_IPOD_1, bReqSrc = 1.",
                                "100 Play: Play() - Request source SID_IPOD_1 failed!",
                                "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=" + std::to_string(code)));
        EXPECT_EQ(LogFormats()[2], "100 Play: Play() - Request source %s failed!");
    }
    Sources().calls.clear();
    Play(player, 3);
    EXPECT_THAT(Sources().calls, ElementsAre("IsActived(10)"));
}

TEST_F(PlayTest, ARefusedFirstRequestLeavesNoSource)
{
    IQBXIpodPlayer& player = Connected();
    Sources().requestResult = 0;
    Play(player, 2);
    ClearLog();

    EXPECT_EQ(Play(player, 5), 0);

    EXPECT_THAT(LogLines(), ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:5)."));
}

TEST_F(PlayTest, StartsPlaybackOnTheActiveSourceWithTheOptionItself)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 1);
    Sources().active = {10};
    service.Answer("Play", "(true,)");

    for (const int option : {3, 4, 5}) EXPECT_EQ(Play(player, option), 1);

    EXPECT_THAT(service.Calls(), ElementsAre("Play(0x03,)", "Play(0x04,)", "Play(0x05,)"));
    EXPECT_THAT(Sources().calls, ElementsAre("IsActived(10)", "IsActived(10)", "IsActived(10)"));
    EXPECT_EQ(LogLines()[0], "40 Play: QBXIpod_MediaPlayer_Client::Play(devID:3).");
    EXPECT_EQ(LogLines()[1], "40 Play: QBXIpod_MediaPlayer_Client::Play() -- source SID_IPOD_0, bReqSrc = 0.");
    EXPECT_EQ(LogLines()[2], "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=1");
    EXPECT_EQ(LogLines().size(), 9U);
}

TEST_F(PlayTest, ReturnsTheServicesRefusal)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 2);
    Sources().active = {11};
    service.Answer("Play", "(false,)");

    EXPECT_EQ(Play(player, 4), 0);

    EXPECT_THAT(Sources().calls, ElementsAre("IsActived(11)"));
    EXPECT_EQ(LogLines().back(), "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=0");
}

TEST_F(PlayTest, DoesNotStartOnAnInactiveSource)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 1);
    Sources().active = {11};

    EXPECT_EQ(Play(player, 4), 0);

    EXPECT_THAT(service.Calls(), IsEmpty());
    EXPECT_THAT(LogLines(),
                ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:4).",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play() -- source SID_IPOD_0, bReqSrc = 0.",
                            "40 Play: Play() - source SID_IPOD_0 inactived!",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=0"));
    EXPECT_EQ(LogFormats()[2], "40 Play: Play() - source %s inactived!");
}

TEST_F(PlayTest, AlwaysConfirmsTheFirstSource)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 2);

    EXPECT_EQ(Play(player, 6, 7), 1);
    EXPECT_EQ(Play(player, 7, -8), 1);

    EXPECT_THAT(Sources().calls, ElementsAre("ActiveSourceConfirm(10, 7)", "DeactiveSourceConfirm(10, -8)"));
    EXPECT_THAT(service.Calls(), IsEmpty());
    EXPECT_THAT(LogLines(), ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:6).",
                                        "40 Play: QBXIpod_MediaPlayer_Client::Play(devID:7)."));
}

TEST_F(PlayTest, RejectsUnknownOptions)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 1);
    Sources().active = {10};
    for (const int option : {0, 8, -1, 259})
    {
        ClearLog();

        EXPECT_EQ(Play(player, option), 0);

        EXPECT_THAT(LogLines(),
                    ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:" + std::to_string(option) + ").",
                                "100 Play: Unknow type"));
    }
    EXPECT_THAT(Sources().calls, IsEmpty());
    EXPECT_THAT(service.Calls(), IsEmpty());
}

TEST_F(PlayTest, LogsAnErrorReplyAndReturnsZero)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 1);
    Sources().active = {10};
    service.Fail("Play", "no device");

    EXPECT_EQ(Play(player, 3), 0);

    EXPECT_THAT(LogLines(),
                ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:3).",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play() -- source SID_IPOD_0, bReqSrc = 0.",
                            "100 Play: com_zarn_linux_ipod_call_play_sync: Failed to call dbus method. "
                            "Reason: GDBus.Error:com.example.Broken: no device.",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=0"));
    EXPECT_EQ(LogFormats()[2], "100 Play: com_zarn_linux_ipod_call_play_sync: Failed to call dbus method. Reason: %s.");
}

TEST_F(PlayWithoutServiceTest, LogsTheBusErrorAndReturnsZero)
{
    IQBXIpodPlayer& player = Unconnected();
    Grant(player, 1);
    Sources().active = {10};

    EXPECT_EQ(Play(player, 3), 0);

    EXPECT_THAT(LogLines()[2],
                testing::StartsWith("100 Play: com_zarn_linux_ipod_call_play_sync: Failed to call dbus method. Reason: "
                                    "GDBus.Error:org.freedesktop.DBus.Error.ServiceUnknown: "));
}

TEST_F(PlayWithoutProxyTest, ReturnsZeroWithoutAFailureLine)
{
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    Grant(player, 1);
    Sources().active = {10};

    EXPECT_EQ(Play(player, 3), 0);

    EXPECT_THAT(LogLines(),
                ElementsAre("40 Play: QBXIpod_MediaPlayer_Client::Play(devID:3).",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play() -- source SID_IPOD_0, bReqSrc = 0.",
                            "40 Play: QBXIpod_MediaPlayer_Client::Play-bRet=0"));
}

TEST_F(PlayTest, TheFirstActiveSourceIsReleasedWhenItBecomesInvalid)
{
    const struct
    {
        const char* valid;
        std::set<int> active;
        std::vector<std::string> calls;
    } rows[] = {{"false", {10, 11}, {"IsActived(10)", "Release(10, 1)"}},
                {"false", {11}, {"IsActived(10)", "IsActived(11)", "Release(11, 1)"}},
                {"false", {}, {"IsActived(10)", "IsActived(11)"}},
                {"true", {10, 11}, {}}};
    Connected();
    for (const auto& row : rows)
    {
        Sources().active = row.active;
        Sources().calls.clear();

        Deliver("OnIpodSourceValidStatusChange", std::string("(") + row.valid + ",)");

        EXPECT_EQ(Sources().calls, row.calls);
    }
}

TEST_F(PlayTest, TheSourceIsReleasedBeforeListenersAreNotified)
{
    class Watcher : public IQBXIpodPlayerListener
    {
    public:
        void OnIpodSourceValidStatusChange(int) override { callsBefore = Sources().calls; }

        std::vector<std::string> callsBefore;
    } listener;
    Connected().AddListener(&listener);
    Sources().active = {10};

    Deliver("OnIpodSourceValidStatusChange", "(false,)");

    EXPECT_THAT(listener.callsBefore, ElementsAre("IsActived(10)", "Release(10, 1)"));
}

TEST_F(PlayTest, AReleaseKeepsTheGrantedSource)
{
    IQBXIpodPlayer& player = Connected();
    Grant(player, 2);
    Sources().active = {11};
    Deliver("OnIpodSourceValidStatusChange", "(false,)");
    Sources().calls.clear();

    Play(player, 3);

    EXPECT_THAT(Sources().calls, ElementsAre("IsActived(11)"));
}
}  // namespace
}  // namespace test
