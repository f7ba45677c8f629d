// InitInstance(): the proxy, the service's owner, the subscription.
#include <chrono>

#include "bus/bus_test.h"
#include "support/signal_barrier.h"

namespace test
{
namespace
{
using ConnectionTest = ServiceTest;
using ConnectionWithoutServiceTest = NoServiceTest;

class ConnectionWithoutBusTest : public ClientTest
{
protected:
    NoBus bus;
};

TEST_F(ConnectionTest, LogsTheOwnerOnceAndSucceeds)
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    ClearLog();

    const bool connected = player->InitInstance();

    EXPECT_TRUE(connected);
    EXPECT_THAT(LogLines(), ElementsAre("40 InitInstance: InitInstance()", "40 InitShareMemory: InitShareMemory()",
                                        "40 InitDBusConnect: persist_proxy_get_service_dbus_ready_status Owner Name: " +
                                            service.UniqueName()));
    EXPECT_EQ(LogFormats().front(), "40 InitInstance: %s()");
    EXPECT_EQ(LogFormats().back(), "40 InitDBusConnect: persist_proxy_get_service_dbus_ready_status Owner Name: %s");
}

TEST_F(ConnectionTest, DeliversSignalsOfBothSpellings)
{
    Connected().AddListener(&app);

    Deliver("OnIpodArtworkChange", "(<[byte 1, 0, 0, 0]>,)");
    Deliver("OnIpodBatteryChange", "(<[byte 8, 1, 16, 50]>,)");

    EXPECT_THAT(journal, ElementsAre("app.OnIpodArtworkChange(1, 0, 0, 0, [])", "app.OnIpodBatteryChange(1, 50)"));
}

TEST_F(ConnectionTest, DispatchesEachSignalTwiceAfterTwoInits)
{
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&app);

    EXPECT_TRUE(player.InitInstance());
    Deliver("OnPlayStatusChanged", "(2,)");

    EXPECT_THAT(journal, ElementsAre("app.OnPlayStatusChanged(2)", "app.OnPlayStatusChanged(2)"));
}

TEST_F(ConnectionTest, IgnoresSignalsThatTheContractDoesNotHave)
{
    Connected().AddListener(&app);

    DeliverBody("OnSomethingElse", g_variant_new("(i)", 1));

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(ConnectionTest, IgnoresSignalsOfAProcessThatDoesNotOwnTheName)
{
    Connected().AddListener(&app);
    FakeService second;

    second.Emit("OnPlayStatusChanged", "(1,)");
    EXPECT_TRUE(PassBarrier(second));
    Deliver("OnPlayStatusChanged", "(2,)");

    EXPECT_THAT(journal, ElementsAre("app.OnPlayStatusChanged(2)"));
}

TEST_F(ConnectionTest, FailsAfterTheServiceReleasedItsName)
{
    IQBXIpodPlayer& player = Connected();

    service.ReleaseName();

    EXPECT_FALSE(player.InitInstance());
}

TEST_F(ConnectionWithoutServiceTest, WarnsAndFailsWithoutAnOwner)
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    ClearLog();

    const bool connected = player->InitInstance();

    EXPECT_FALSE(connected);
    EXPECT_THAT(LogLines(),
                ElementsAre("40 InitInstance: InitInstance()", "40 InitShareMemory: InitShareMemory()",
                            "80 InitDBusConnect: persist_proxy_get_service_dbus_ready_status Owner Name is nullptr"));
}

TEST_F(ConnectionWithoutServiceTest, DeliversNothingEvenIfTheServiceStartsLater)
{
    Unconnected().AddListener(&app);
    FakeService service;

    service.Emit("OnPlayStatusChanged", "(2,)");
    RunLoopFor(std::chrono::milliseconds(50));

    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(ConnectionWithoutServiceTest, CommandsReachAServiceStartedLater)
{
    IQBXIpodPlayer& player = Unconnected();
    FakeService service;
    service.Answer("GetShuffleMode", "(2,)");

    EXPECT_EQ(player.GetShuffleMode(), 2);
}

TEST_F(ConnectionWithoutServiceTest, SucceedsLaterOnceTheServiceHasStarted)
{
    IQBXIpodPlayer& player = Unconnected();
    player.AddListener(&app);
    FakeService service;

    EXPECT_TRUE(player.InitInstance());
    service.Emit("OnPlayStatusChanged", "(2,)");

    EXPECT_TRUE(RunLoopUntil([this] { return !journal.empty(); }));
    EXPECT_THAT(journal, ElementsAre("app.OnPlayStatusChanged(2)"));
}

TEST_F(ConnectionWithoutBusTest, TriesSevenTimesAndFails)
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    ClearLog();

    const bool connected = player->InitInstance();

    EXPECT_FALSE(connected);
    const std::vector<LogRecord> records = LogRecords();
    ASSERT_EQ(records.size(), 9U);
    for (std::size_t attempt = 0; attempt < 7; ++attempt)
    {
        const LogRecord& record = records[2 + attempt];
        EXPECT_EQ(record.level, 100);
        EXPECT_EQ(record.function, "InitDBusConnect");
        EXPECT_EQ(record.format, "InitDBusConnect: Failed to create proxy. Reason: %s.retry->%d");
        EXPECT_THAT(record.text, testing::EndsWith(".retry->" + std::to_string(attempt)));
    }
}

TEST_F(ConnectionWithoutBusTest, FailsWithinATenthOfASecond)
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    const auto start = std::chrono::steady_clock::now();

    player->InitInstance();

    EXPECT_LE(std::chrono::steady_clock::now() - start, IPOD_PATIENCE * std::chrono::milliseconds(100));
}

TEST_F(ConnectionWithoutBusTest, LeavesNoProxySoThatCommandsReturnTheirFailureValues)
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    player->InitInstance();
    ClearLog();

    EXPECT_EQ(player->GetShuffleMode(), 255);
    EXPECT_FALSE(player->Next());
    EXPECT_THAT(LogLines(), IsEmpty());
}
}  // namespace
}  // namespace test
