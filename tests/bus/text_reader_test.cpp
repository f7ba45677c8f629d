// The commands that have a text parameter but never set it, and the one that does not wait.
#include "bus/bus_test.h"

namespace test
{
namespace
{
using TextReaderTest = ServiceTest;
using NotifyTest = ServiceTest;
using NotifyWithoutServiceTest = NoServiceTest;

TEST_F(TextReaderTest, EmptyTextsStayEmpty)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("GetIpodName", "('Phone',)");
    service.Answer("GetIpodAppBundleName", "('com.example.maps',)");
    service.Answer("GetCarplayDeviceDetectStatus", "(1, 'SERIAL')");
    std::string text;
    auto status = APPLE_DEVICE_DETECTED;

    player.GetIpodName(text);
    player.GetIpodAPPBundleName(text);
    player.GetCarplayDeviceDetectStatus(status, text);

    EXPECT_EQ(text, "");
    EXPECT_EQ(status, APPLE_DEVICE_NOT_DETECTED);
    EXPECT_EQ(LogLines()[1], "40 GetIpodName: GetIpodName, IpodName : ");
}

TEST_F(TextReaderTest, OnlyTheLowestByteOfTheStatusIsWritten)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("GetCarplayDeviceDetectStatus", "(0xab, 'SERIAL')");
    auto status = static_cast<QBXAppleDeviceDetectStatus>(-1);
    std::string serial = "before";

    player.GetCarplayDeviceDetectStatus(status, serial);

    EXPECT_EQ(static_cast<unsigned>(status), 0xffffffabU);
    EXPECT_EQ(serial, "before");
    EXPECT_THAT(LogLines(), ElementsAre("40 GetCarplayDeviceDetectStatus: GetCarplayDeviceDetectStatus()"));
}

TEST_F(NotifyTest, SendsBothFlagsAsBooleans)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("CarplayConnectStatusNotify", "()");

    player.CarPlayConnectStatusNotify(2, 0);
    player.CarPlayConnectStatusNotify(0, -1);
    player.CarPlayConnectStatusNotify(256, 65536);

    EXPECT_TRUE(service.WaitForCalls(3));
    EXPECT_THAT(service.Calls(),
                ElementsAre("CarplayConnectStatusNotify(true, false)", "CarplayConnectStatusNotify(false, true)",
                            "CarplayConnectStatusNotify(true, true)"));
}

TEST_F(NotifyTest, ReturnsBeforeTheServiceHasAnswered)
{
    IQBXIpodPlayer& player = Connected();
    service.Hold("CarplayConnectStatusNotify");

    player.CarPlayConnectStatusNotify(1, 1);

    EXPECT_TRUE(service.WaitForCalls(1));
    EXPECT_THAT(LogLines(), IsEmpty());
    service.AnswerHeld("()");
    RunLoopFor(std::chrono::milliseconds(30));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(NotifyTest, LogsAFailureWhenTheLoopRuns)
{
    IQBXIpodPlayer& player = Connected();
    service.Fail("CarplayConnectStatusNotify", "not now");
    const std::string line =
        "100 CarPlayConnectStatusNotifyCallback: CarPlayConnectStatusNotifyCallback: Failed to call dbus method. "
        "Reason: GDBus.Error:com.example.Broken: not now.";

    player.CarPlayConnectStatusNotify(1, 1);
    EXPECT_TRUE(service.WaitForCalls(1));

    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_TRUE(RunLoopUntil([] { return !LogLines().empty(); }));
    EXPECT_THAT(LogLines(), ElementsAre(line));
    EXPECT_THAT(LogFormats(), ElementsAre("100 CarPlayConnectStatusNotifyCallback: CarPlayConnectStatusNotifyCallback: "
                                          "Failed to call dbus method. Reason: %s."));
}

TEST_F(NotifyTest, LogsThatTheServiceDied)
{
    IQBXIpodPlayer& player = Connected();
    service.Hold("CarplayConnectStatusNotify");
    player.CarPlayConnectStatusNotify(1, 1);
    EXPECT_TRUE(service.WaitForCalls(1));

    service.Vanish();

    EXPECT_TRUE(RunLoopUntil([] { return !LogLines().empty(); }));
    EXPECT_THAT(LogLines(), ElementsAre(testing::StartsWith("100 CarPlayConnectStatusNotifyCallback: ")));
}

TEST_F(NotifyTest, LogsAFailureAfterAReconnection)
{
    IQBXIpodPlayer& player = Connected();
    service.Hold("CarplayConnectStatusNotify");
    player.CarPlayConnectStatusNotify(1, 1);
    EXPECT_TRUE(service.WaitForCalls(1));
    ASSERT_TRUE(player.InitInstance());
    ClearLog();

    service.Vanish();

    EXPECT_TRUE(RunLoopUntil([] { return !LogLines().empty(); }));
    EXPECT_THAT(LogLines(), ElementsAre(testing::StartsWith("100 CarPlayConnectStatusNotifyCallback: ")));
}

TEST_F(NotifyWithoutServiceTest, LogsTheBusError)
{
    Unconnected().CarPlayConnectStatusNotify(1, 1);

    EXPECT_TRUE(RunLoopUntil([] { return !LogLines().empty(); }));
    EXPECT_THAT(LogLines(), ElementsAre(testing::HasSubstr("org.freedesktop.DBus.Error.ServiceUnknown")));
}
}  // namespace
}  // namespace test
