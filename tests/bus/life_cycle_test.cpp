// The life cycle of the player object: built, destroyed, built again.
#include <QBXIpodShareMemory.h>
#include <sys/stat.h>

#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "bus/bus_test.h"

namespace test
{
namespace
{
constexpr char kConnectStart[] = "40 QBX_GetIpodPlayer: QBX_Dbus_Connect_Init(TunerService Lib):AppMgr Connect Start.";

using LifeCycleTest = ClientTest;
using LifeCycleWithServiceTest = ServiceTest;

// A segment that no process can map.
void PutPipeInPlaceOfListSegment()
{
    ASSERT_EQ(mkfifo((std::string("/dev/shm/") + kListSegmentName).c_str(), 0600), 0);
}

TEST_F(LifeCycleTest, TheAccessorReturnsTheSameObjectAndLogsConnectStartOnce)
{
    IQBXIpodPlayer* const first = QBX_GetIpodPlayer();
    IQBXIpodPlayer* const second = QBX_GetIpodPlayer();

    EXPECT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_THAT(LogLines(), ElementsAre(kConnectStart, "40 InitShareMemory: InitShareMemory()"));
    EXPECT_EQ(LogFormats().back(), "40 InitShareMemory: %s()");
}

TEST_F(LifeCycleTest, ConcurrentCallersGetTheSameObject)
{
    std::vector<std::future<IQBXIpodPlayer*>> players;
    for (int i = 0; i < 8; ++i) players.push_back(std::async(std::launch::async, QBX_GetIpodPlayer));

    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();

    for (auto& other : players) EXPECT_EQ(other.get(), player);
    EXPECT_THAT(LogLines(), testing::UnorderedElementsAre(kConnectStart, "40 InitShareMemory: InitShareMemory()"));
}

TEST_F(LifeCycleTest, DestroyingWithoutAnObjectDoesNothing)
{
    QBX_DestroyIpodPlayer();
    QBX_DestroyIpodPlayer();

    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_NE(QBX_GetIpodPlayer(), nullptr);
}

TEST_F(LifeCycleTest, ANewObjectAfterDestructionDoesNotLogConnectStartAgain)
{
    QBX_GetIpodPlayer();
    ClearLog();

    QBX_DestroyIpodPlayer();
    IQBXIpodPlayer* const second = QBX_GetIpodPlayer();

    EXPECT_NE(second, nullptr);
    EXPECT_EQ(second->GetListenerCount(), 0U);
    EXPECT_THAT(LogLines(), ElementsAre("40 ~QBXIpod_MediaPlayer_Client: ~QBXIpod_MediaPlayer_Client()",
                                        "40 InitShareMemory: InitShareMemory()"));
    EXPECT_EQ(LogFormats().front(), "40 ~QBXIpod_MediaPlayer_Client: %s()");
}

TEST_F(LifeCycleTest, DestructionDoesNotNotifyListeners)
{
    QBX_GetIpodPlayer()->AddListener(&app);

    QBX_DestroyIpodPlayer();

    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(LifeCycleWithServiceTest, ExitInstanceSucceedsLogsAndChangesNothing)
{
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&app);
    service.Answer("Next", "(true,)");

    const bool exited = player.ExitInstance();

    EXPECT_TRUE(exited);
    EXPECT_THAT(LogLines(), ElementsAre("40 ExitInstance: ExitInstance()"));
    EXPECT_EQ(LogFormats().front(), "40 ExitInstance: %s()");
    EXPECT_TRUE(player.Next());
    Deliver("OnIpodPlayingListAmountChange", "(3,)");
    EXPECT_THAT(journal, ElementsAre("app.OnIpodPlayingListAmountChange(3)"));
}

TEST_F(LifeCycleWithServiceTest, ANewObjectUsesTheProxyOfTheOldOne)
{
    service.Answer("GetRepeatMode", "(1,)");
    Connected();
    QBX_DestroyIpodPlayer();

    EXPECT_EQ(QBX_GetIpodPlayer()->GetRepeatMode(), 1);
}

TEST_F(LifeCycleWithServiceTest, ARebuiltAndInitializedObjectGetsEachEventOnce)
{
    Connected();
    QBX_DestroyIpodPlayer();
    Connected().AddListener(&app);

    Deliver("OnPlayStatusChanged", "(1,)");

    EXPECT_THAT(journal, ElementsAre("app.OnPlayStatusChanged(1)"));
}

TEST_F(LifeCycleTest, AnExceptionWhileBuildingLeavesTheLockHeld)
{
    PutPipeInPlaceOfListSegment();

    EXPECT_THROW(QBX_GetIpodPlayer(), boost::interprocess::interprocess_exception);

    const auto other = std::make_shared<std::promise<IQBXIpodPlayer*>>();
    std::future<IQBXIpodPlayer*> player = other->get_future();
    std::thread([other] { other->set_value(QBX_GetIpodPlayer()); }).detach();
    EXPECT_EQ(player.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
}

TEST_F(LifeCycleTest, DestroyingWaitsForTheLock)
{
    PutPipeInPlaceOfListSegment();
    EXPECT_THROW(QBX_GetIpodPlayer(), boost::interprocess::interprocess_exception);

    auto* const other = new std::promise<void>;
    std::future<void> destroyed = other->get_future();
    std::thread(
        [other]
        {
            QBX_DestroyIpodPlayer();
            other->set_value();
        })
        .detach();
    EXPECT_EQ(destroyed.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
}

TEST_F(LifeCycleTest, BuildingAndDestroyingReleaseTheLock)
{
    QBX_GetIpodPlayer();
    std::async(std::launch::async, QBX_DestroyIpodPlayer).get();

    EXPECT_NE(std::async(std::launch::async, QBX_GetIpodPlayer).get(), nullptr);
}

TEST_F(LifeCycleTest, AnExceptionWhileBuildingIsNotRepeatedByTheSameThread)
{
    PutPipeInPlaceOfListSegment();
    EXPECT_THROW(QBX_GetIpodPlayer(), boost::interprocess::interprocess_exception);
    ClearLog();

    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();

    EXPECT_NE(player, nullptr);
    EXPECT_THAT(LogLines(), ElementsAre("40 InitShareMemory: InitShareMemory()"));
    EXPECT_EQ(g_VecDBListShareMemory, nullptr);
    EXPECT_EQ(g_VecEapReadBufferShareMemory, nullptr);
}

TEST_F(LifeCycleTest, AnExistingObjectIsReturnedWithoutTheLock)
{
    PutPipeInPlaceOfListSegment();
    EXPECT_THROW(QBX_GetIpodPlayer(), boost::interprocess::interprocess_exception);
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();

    const auto other = std::make_shared<std::promise<IQBXIpodPlayer*>>();
    std::future<IQBXIpodPlayer*> same = other->get_future();
    std::thread([other] { other->set_value(QBX_GetIpodPlayer()); }).detach();

    ASSERT_EQ(same.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    EXPECT_EQ(same.get(), player);
}

TEST_F(LifeCycleWithServiceTest, CommandsWorkAfterAnExceptionWhileBuildingAndListsAreEmpty)
{
    PutPipeInPlaceOfListSegment();
    EXPECT_THROW(QBX_GetIpodPlayer(), boost::interprocess::interprocess_exception);
    IQBXIpodPlayer& player = Connected();
    service.Answer("Next", "(true,)");
    service.Answer("GetDeviceList", "(true,)");
    std::vector<std::string> list = {"before"};
    std::vector<unsigned char> data = {1};

    EXPECT_TRUE(player.Next());
    EXPECT_EQ(player.GetDeviceList(list), 1);
    EXPECT_THAT(list, IsEmpty());
    EXPECT_THROW(player.EapWrite(1, data), boost::interprocess::interprocess_exception);
}
}  // namespace
}  // namespace test
