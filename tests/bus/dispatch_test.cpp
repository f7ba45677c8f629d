// Delivery of events to listeners: copies, references, the lock, misbehaving listeners.
#include <algorithm>
#include <future>
#include <stdexcept>

#include "bus/bus_test.h"
#include "support/fake_source.h"
#include "support/shared_vectors.h"
#include "support/variant_text.h"

namespace test
{
namespace
{
using DispatchTest = ServiceTest;

// Records its arguments, then modifies those passed by value.
class GreedyListener : public RecordingListener
{
public:
    using RecordingListener::RecordingListener;

    void OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info) override
    {
        RecordingListener::OnIpodPlayingTrackChange(index, info);
        info.text1 = "changed";
        info.value4 = -1;
    }

    void OnIpodArtworkChange(QBXTrackArtwork artwork) override
    {
        images.push_back(artwork.image.data());
        RecordingListener::OnIpodArtworkChange(artwork);
        artwork.word1 = 99;
        artwork.image.assign(3, 0xee);
    }

    void OnIpodAPPBundleNameChange(std::string bundleName) override
    {
        RecordingListener::OnIpodAPPBundleNameChange(bundleName);
        bundleName[0] = '#';
    }

    void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber) override
    {
        RecordingListener::OnCarplayDeviceDetectStatusChange(status, serialNumber);
        serialNumber[0] = '#';
    }

    void OnOOBPairingInfo(std::string btAddress, const std::vector<unsigned char>& bytes) override
    {
        RecordingListener::OnOOBPairingInfo(btAddress, bytes);
        btAddress[0] = '#';
    }

    void OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data) override
    {
        RecordingListener::OnIpodReceiveEapData(session, data);
        data.push_back(0xee);
    }

    std::vector<const unsigned char*> images;
};

class LeavingListener : public RecordingListener
{
public:
    LeavingListener(Journal& journal, std::string name) : RecordingListener(journal, std::move(name)) {}

    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override
    {
        RecordingListener::OnPlayStatusChanged(status);
        QBX_GetIpodPlayer()->RemoveListener(this);
    }
};

class ThrowingListener : public IQBXIpodPlayerListener
{
public:
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { throw std::runtime_error("listener"); }
};

// Checks from another thread whether the lock is free.
bool OtherThreadGetsTheLock(IQBXIpodPlayer& player, std::future<void>& waiting)
{
    waiting = std::async(std::launch::async,
                         [&player]
                         {
                             player.LockListener();
                             player.UnlockListener();
                         });
    return waiting.wait_for(std::chrono::milliseconds(50)) == std::future_status::ready;
}

class LockWatcher : public IQBXIpodPlayerListener
{
public:
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override
    {
        lockWasFree = OtherThreadGetsTheLock(*QBX_GetIpodPlayer(), waiting);
    }

    bool lockWasFree = true;
    std::future<void> waiting;
};

TEST_F(DispatchTest, EachListenerGetsItsOwnTrack)
{
    Journal journal;
    GreedyListener listeners[] = {{journal, "a"}, {journal, "b"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);

    Deliver("OnIpodPlayingTrackChange", "(0, " + BytesInVariant(TrackRecord({"1", "2", "3", "4"}, {5, 6, 7, 8})) + ")");

    const std::string received = "OnIpodPlayingTrackChange(0, \"1\", \"2\", \"3\", \"4\", 5, 6, 7, 8)";
    EXPECT_THAT(journal, ElementsAre("a." + received, "b." + received));
}

TEST_F(DispatchTest, EachListenerGetsItsOwnArtwork)
{
    SharedVectors().SetBytes("VecArtworkChangeBufferShareMemory", {1, 2});
    Journal journal;
    GreedyListener listeners[] = {{journal, "a"}, {journal, "b"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);

    Deliver("OnIpodArtworkChange", "(" + BytesInVariant(Words({1, 2, 3, 4})) + ",)");

    EXPECT_THAT(journal, ElementsAre("a.OnIpodArtworkChange(1, 2, 3, 4, [01 02])",
                                     "b.OnIpodArtworkChange(1, 2, 3, 4, [01 02])"));
}

TEST_F(DispatchTest, EachListenerGetsItsOwnStrings)
{
    Journal journal;
    GreedyListener listeners[] = {{journal, "a"}, {journal, "b"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);

    Deliver("OnIpodAppBundleNameChange", "('maps',)");
    Deliver("OnCarplayDeviceDetectStatusChange", "(0, 'serial')");
    Deliver("OnOOBPairingInfo", "('address', [])");

    EXPECT_THAT(journal, ElementsAre("a.OnIpodAPPBundleNameChange(\"maps\")", "b.OnIpodAPPBundleNameChange(\"maps\")",
                                     "a.OnCarplayDeviceDetectStatusChange(0, \"serial\")",
                                     "b.OnCarplayDeviceDetectStatusChange(0, \"serial\")",
                                     "a.OnOOBPairingInfo(\"address\", [])", "b.OnOOBPairingInfo(\"address\", [])"));
}

TEST_F(DispatchTest, AllListenersShareTheBytesOfAnAccessorySession)
{
    SharedVectors().SetBytes("VecEapReadBufferShareMemory", {1, 2});
    Journal journal;
    GreedyListener listeners[] = {{journal, "a"}, {journal, "b"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);

    Deliver("OnIpodReceiveEapData", "(7,)");

    EXPECT_THAT(journal, ElementsAre("a.OnIpodReceiveEapData(7, [01 02])", "b.OnIpodReceiveEapData(7, [01 02 ee])"));
    EXPECT_THAT(SharedVectors().Bytes("VecEapReadBufferShareMemory"), ElementsAre(1, 2));
}

TEST_F(DispatchTest, AListenerMayRemoveItself)
{
    Journal journal;
    LeavingListener listeners[] = {{journal, "a"}, {journal, "b"}, {journal, "c"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);

    Deliver("OnPlayStatusChanged", "(1,)");
    Deliver("OnPlayStatusChanged", "(2,)");

    EXPECT_THAT(journal,
                ElementsAre("a.OnPlayStatusChanged(1)", "b.OnPlayStatusChanged(1)", "c.OnPlayStatusChanged(1)"));
    EXPECT_EQ(player.GetListenerCount(), 0U);
}

TEST_F(DispatchTest, AListenerMayReplaceItself)
{
    struct Substituted : IQBXIpodPlayerListener
    {
        void OnPlayStatusChanged(iPodPlayerPlayStatus) override
        {
            ++calls;
            QBX_GetIpodPlayer()->RemoveListener(this);
            QBX_GetIpodPlayer()->AddListener(substitute);
        }

        IQBXIpodPlayerListener* substitute = nullptr;
        int calls = 0;
    };
    Journal journal;
    Substituted leaving;
    RecordingListener others[] = {{journal, "a"}, {journal, "b"}, {journal, "c"}};
    leaving.substitute = &others[1];
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&others[0]);
    player.AddListener(&others[2]);
    player.AddListener(&leaving);

    Deliver("OnPlayStatusChanged", "(1,)");
    Deliver("OnPlayStatusChanged", "(2,)");

    EXPECT_EQ(leaving.calls, 1);
    EXPECT_EQ(player.GetListenerCount(), 3U);
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "a.OnPlayStatusChanged(1)"), 1);
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "c.OnPlayStatusChanged(1)"), 1);
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "b.OnPlayStatusChanged(2)"), 1);
}

TEST_F(DispatchTest, ARemovedListenerGetsNoMoreEvents)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&listener);

    player.RemoveListener(&listener);
    Deliver("OnPlayStatusChanged", "(1,)");

    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(DispatchTest, TheListenerLockIsHeldWhileListenersRunAndFreeAfterwards)
{
    LockWatcher listener;
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&listener);

    Deliver("OnPlayStatusChanged", "(1,)");

    EXPECT_FALSE(listener.lockWasFree);
    std::future<void> waiting;
    EXPECT_TRUE(OtherThreadGetsTheLock(player, waiting));
}

TEST_F(DispatchTest, TheListenerLockIsHeldWhileASourceIsReleased)
{
    IQBXIpodPlayer& player = Connected();
    bool lockWasFree = true;
    std::future<void> waiting;
    Sources().active = {10};
    Sources().released = [&] { lockWasFree = OtherThreadGetsTheLock(player, waiting); };

    Deliver("OnIpodSourceValidStatusChange", "(false,)");

    EXPECT_FALSE(lockWasFree);
}

TEST_F(DispatchTest, AListenerThatThrowsLeavesTheLockFree)
{
    ThrowingListener listener;
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    player.AddListener(&listener);

    EXPECT_THROW(player.OnPlayStatusChanged(IPOD_PLAY_STATUS_PLAYING), std::runtime_error);

    std::future<void> waiting;
    EXPECT_TRUE(OtherThreadGetsTheLock(player, waiting));
}

TEST_F(DispatchTest, AListenerMayUseCommands)
{
    class Asking : public IQBXIpodPlayerListener
    {
    public:
        void OnPlayStatusChanged(iPodPlayerPlayStatus) override { answer = QBX_GetIpodPlayer()->GetRepeatMode(); }

        int answer = -1;
    } listener;
    service.Answer("GetRepeatMode", "(2,)");
    Connected().AddListener(&listener);

    Deliver("OnPlayStatusChanged", "(1,)");

    EXPECT_EQ(listener.answer, 2);
}

TEST_F(DispatchTest, TheClientsOwnProgressListenerDoesNothing)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&listener);

    player.OnPlayProgressChange(1, 2);

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(DispatchTest, EventsArriveInSignalOrder)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    Connected().AddListener(&listener);

    for (int i = 0; i < 5; ++i) service.Emit("OnIpodPlayingListAmountChange", "(" + std::to_string(i) + ",)");
    Deliver("OnPlayStatusChanged", "(1,)");

    EXPECT_THAT(journal, ElementsAre("app.OnIpodPlayingListAmountChange(0)", "app.OnIpodPlayingListAmountChange(1)",
                                     "app.OnIpodPlayingListAmountChange(2)", "app.OnIpodPlayingListAmountChange(3)",
                                     "app.OnIpodPlayingListAmountChange(4)", "app.OnPlayStatusChanged(1)"));
}

TEST_F(DispatchTest, PairingInformationMayBeOneByte)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    Connected().AddListener(&listener);

    Deliver("OnOOBPairingInfo", "('', [(byte 7,)])");

    EXPECT_THAT(journal, ElementsAre("app.OnOOBPairingInfo(\"\", [07])"));
}

TEST_F(DispatchTest, PairingInformationMayBeEmpty)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    Connected().AddListener(&listener);

    Deliver("OnOOBPairingInfo", "('', [])");

    EXPECT_THAT(journal, ElementsAre("app.OnOOBPairingInfo(\"\", [])"));
    EXPECT_THAT(LogLines(), ElementsAre("40 OnOOBPairingInfo: OnOOBPairingInfo() - , 0"));
}

TEST_F(DispatchTest, AnUnsetFlagIsLoggedAsZero)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    Connected().AddListener(&listener);

    Deliver("OnWirelessCarPlayUpdate", "(false, '')");

    EXPECT_THAT(journal, ElementsAre("app.OnWirelessCarPlayUpdate(false, \"\")"));
    EXPECT_THAT(LogLines(), ElementsAre("40 OnWirelessCarPlayUpdate: OnWirelessCarPlayUpdate() - 0, "));
}
}  // namespace
}  // namespace test
