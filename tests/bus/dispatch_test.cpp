// Delivery of events to listeners: copies, references, the lock, misbehaving listeners.
#include <functional>
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
};

// Counts its events; the first one runs an action.
class CountingListener : public IQBXIpodPlayerListener
{
public:
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override
    {
        if (++events == 1) first();
    }

    std::function<void()> first = [] {};
    int events = 0;
};

// The change that the third of five listeners makes during the first of two events, and the events per listener. Added
// ones are not registered before.
struct Change
{
    const char* name;
    std::vector<std::size_t> removed;
    std::vector<std::size_t> added;
    std::vector<int> events;
};

std::ostream& operator<<(std::ostream& out, const Change& change)
{
    return out << change.name;
}

const Change kChanges[] = {
    {"RemovesItself", {2}, {}, {2, 2, 1, 2, 2}},
    {"RemovesOthers", {1, 3}, {}, {2, 1, 2, 0, 2}},
    {"RemovesAll", {0, 1, 2, 3, 4}, {}, {1, 1, 1, 0, 0}},
    {"AddsOthers", {}, {1, 3}, {2, 1, 2, 2, 2}},
    {"ReplacesItselfByAnEarlierOne", {2}, {1}, {2, 1, 1, 2, 2}},
    {"ReplacesItselfByALaterOne", {2}, {3}, {2, 2, 1, 2, 2}},
};

class DispatchContinues : public ServiceTest, public testing::WithParamInterface<Change>
{
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

TEST_F(DispatchTest, EachListenerGetsItsOwnCopies)
{
    SharedVectors().SetBytes("VecArtworkChangeBufferShareMemory", {1, 2});
    GreedyListener listeners[] = {{journal, "a"}, {journal, "b"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);
    const std::pair<std::string, std::string> events[] = {
        {"OnIpodPlayingTrackChange", "(0, " + BytesInVariant(TrackRecord({"1", "2", "3", "4"}, {5, 6, 7, 8})) + ")"},
        {"OnIpodArtworkChange", "(" + BytesInVariant(Words({1, 2, 3, 4})) + ",)"},
        {"OnIpodAppBundleNameChange", "('maps',)"},
        {"OnCarplayDeviceDetectStatusChange", "(0, 'serial')"},
        {"OnOOBPairingInfo", "('address', [])"}};

    for (const auto& [signal, body] : events) Deliver(signal, body);

    Journal expected;
    for (const char* const received :
         {R"(OnIpodPlayingTrackChange(0, "1", "2", "3", "4", 5, 6, 7, 8))", "OnIpodArtworkChange(1, 2, 3, 4, [01 02])",
          "OnIpodAPPBundleNameChange(\"maps\")", "OnCarplayDeviceDetectStatusChange(0, \"serial\")",
          "OnOOBPairingInfo(\"address\", [])"})
        for (const char* const name : {"a.", "b."}) expected.push_back(std::string(name) + received);
    EXPECT_EQ(journal, expected);
}

TEST_F(DispatchTest, AllListenersShareTheBytesOfAnAccessorySession)
{
    SharedVectors().SetBytes("VecEapReadBufferShareMemory", {1, 2});
    GreedyListener listeners[] = {{journal, "a"}, {journal, "b"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);

    Deliver("OnIpodReceiveEapData", "(7,)");

    EXPECT_THAT(journal, ElementsAre("a.OnIpodReceiveEapData(7, [01 02])", "b.OnIpodReceiveEapData(7, [01 02 ee])"));
    EXPECT_THAT(SharedVectors().Bytes("VecEapReadBufferShareMemory"), ElementsAre(1, 2));
}

TEST_P(DispatchContinues, WhenAListener)
{
    const Change& change = GetParam();
    CountingListener listeners[5];
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);
    for (const std::size_t i : change.added) player.RemoveListener(&listeners[i]);
    listeners[2].first = [&]
    {
        for (const std::size_t i : change.removed) player.RemoveListener(&listeners[i]);
        for (const std::size_t i : change.added) player.AddListener(&listeners[i]);
    };

    for (int event = 0; event < 2; ++event) Deliver("OnPlayStatusChanged", "(1,)");

    std::vector<int> events;
    for (const auto& listener : listeners) events.push_back(listener.events);
    EXPECT_EQ(events, change.events);
}

INSTANTIATE_TEST_SUITE_P(All, DispatchContinues, testing::ValuesIn(kChanges),
                         [](const testing::TestParamInfo<Change>& row) { return row.param.name; });

TEST_F(DispatchTest, StopsWhenAListenerClearsTheSetDirectly)
{
    CountingListener listeners[3];
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);
    listeners[0].first = [&player] { player.GetListeners().clear(); };

    Deliver("OnPlayStatusChanged", "(1,)");

    EXPECT_EQ(listeners[0].events, 1);
    EXPECT_EQ(listeners[1].events + listeners[2].events, 0);
}

TEST_F(DispatchTest, ARemovedListenerGetsNoMoreEvents)
{
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&app);

    player.RemoveListener(&app);
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
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&app);

    player.OnPlayProgressChange(1, 2);

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(DispatchTest, EventsArriveInSignalOrder)
{
    Connected().AddListener(&app);

    for (int i = 0; i < 5; ++i) service.Emit("OnIpodPlayingListAmountChange", "(" + std::to_string(i) + ",)");
    Deliver("OnPlayStatusChanged", "(1,)");

    EXPECT_THAT(journal, ElementsAre("app.OnIpodPlayingListAmountChange(0)", "app.OnIpodPlayingListAmountChange(1)",
                                     "app.OnIpodPlayingListAmountChange(2)", "app.OnIpodPlayingListAmountChange(3)",
                                     "app.OnIpodPlayingListAmountChange(4)", "app.OnPlayStatusChanged(1)"));
}

TEST_F(DispatchTest, EmptyArgumentsArriveAndAreLogged)
{
    const struct
    {
        const char* signal;
        const char* body;
        const char* received;
        const char* logged;
    } rows[] = {{"OnOOBPairingInfo", "('', [])", "(\"\", [])", "OnOOBPairingInfo() - , 0"},
                {"OnOOBPairingInfo", "('', [(byte 7,)])", "(\"\", [07])", "OnOOBPairingInfo() - , 1"},
                {"OnWirelessCarPlayUpdate", "(false, '')", "(false, \"\")", "OnWirelessCarPlayUpdate() - 0, "}};
    Connected().AddListener(&app);
    for (const auto& row : rows)
    {
        Deliver(row.signal, row.body);

        EXPECT_EQ(journal.back(), std::string("app.") + row.signal + row.received);
        EXPECT_EQ(LogLines().back(), std::string("40 ") + row.signal + ": " + row.logged);
    }
}
}  // namespace
}  // namespace test
