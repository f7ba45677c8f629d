// Dispatch of events to the registered listeners.
#include "internal/notify.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>

namespace
{
using Event = IQBXIpodPlayerListener;

// Runs a function of the test when an event arrives.
struct Probe : IQBXIpodPlayerListener
{
    std::function<void()> onAmount = [] {};
    std::function<void(QBXiPodTrackInfo&)> onTrack = [](QBXiPodTrackInfo&) {};
    std::function<void(std::vector<unsigned char>&)> onEapData = [](std::vector<unsigned char>&) {};
    int calls = 0;

    void OnIpodPlayingListAmountChange(int) override
    {
        ++calls;
        onAmount();
    }
    void OnIpodPlayingTrackChange(int, QBXiPodTrackInfo info) override { onTrack(info); }
    void OnIpodReceiveEapData(unsigned short, std::vector<unsigned char>& data) override { onEapData(data); }
};

class Notify : public testing::Test
{
protected:
    void Add(std::initializer_list<int> which)
    {
        for (const int i : which) m_registry.AddListener(&Listener(i));
    }

    Probe& Listener(int i) { return m_probes[static_cast<std::size_t>(i)]; }

    void SendAmount()
    {
        int amount = 3;
        qbx::Notify(m_registry, &Event::OnIpodPlayingListAmountChange, amount);
    }

    // Another thread can acquire the lock only after the dispatch has released it.
    bool OthersCanLock()
    {
        auto locked = std::async(std::launch::async,
                                 [this]
                                 {
                                     m_registry.LockListener();
                                     m_registry.UnlockListener();
                                 });
        const bool ready = locked.wait_for(std::chrono::seconds(2)) == std::future_status::ready;
        if (!ready) m_registry.UnlockListener();
        return ready;
    }

    qbx::ListenerRegistry m_registry;
    std::array<Probe, 4> m_probes;
};
}  // namespace

TEST_F(Notify, CallsEveryListenerOnceInAscendingOrderOfAddress)
{
    std::vector<int> order;
    for (int i = 0; i < 4; ++i) Listener(i).onAmount = [&order, i] { order.push_back(i); };
    Add({2, 0, 3, 1});

    SendAmount();

    EXPECT_EQ((std::vector<int>{0, 1, 2, 3}), order);
}

TEST_F(Notify, DoesNothingWithoutListeners)
{
    SendAmount();

    EXPECT_TRUE(OthersCanLock());
}

TEST_F(Notify, ContinuesAfterAListenerRemovedItself)
{
    Add({0, 1, 2});
    Listener(1).onAmount = [this] { m_registry.RemoveListener(&Listener(1)); };

    SendAmount();
    SendAmount();

    EXPECT_EQ(2, Listener(0).calls);
    EXPECT_EQ(1, Listener(1).calls);
    EXPECT_EQ(2, Listener(2).calls);
}

TEST_F(Notify, SkipsAListenerThatAnEarlierOneRemoved)
{
    Add({0, 1, 2});
    Listener(0).onAmount = [this] { m_registry.RemoveListener(&Listener(1)); };

    SendAmount();

    EXPECT_EQ(0, Listener(1).calls);
    EXPECT_EQ(1, Listener(2).calls);
}

TEST_F(Notify, StopsWhenAListenerRemovesAll)
{
    Add({0, 1, 2});
    Listener(0).onAmount = [this] { m_registry.GetListeners().clear(); };

    SendAmount();

    EXPECT_EQ(1, Listener(0).calls);
    EXPECT_EQ(0, Listener(1).calls);
    EXPECT_EQ(0, Listener(2).calls);
}

TEST_F(Notify, ReachesAListenerAddedBehindTheCurrentOne)
{
    Add({1});
    Listener(1).onAmount = [this] { Add({0, 2}); };

    SendAmount();

    EXPECT_EQ(0, Listener(0).calls);
    EXPECT_EQ(1, Listener(2).calls);
}

TEST_F(Notify, HoldsTheLockWhileListenersRun)
{
    Add({0});
    std::atomic<bool> entered{false};
    std::thread other;
    bool enteredDuringCall = true;
    Listener(0).onAmount = [&]
    {
        other = std::thread(
            [&]
            {
                m_registry.LockListener();
                entered = true;
                m_registry.UnlockListener();
            });
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        enteredDuringCall = entered;
    };

    SendAmount();
    other.join();

    EXPECT_FALSE(enteredDuringCall);
    EXPECT_TRUE(entered);
}

TEST_F(Notify, PropagatesAnExceptionAndReleasesTheLock)
{
    Add({0, 1});
    Listener(0).onAmount = [] { throw std::runtime_error("from a listener"); };

    EXPECT_THROW(SendAmount(), std::runtime_error);

    EXPECT_EQ(0, Listener(1).calls);
    EXPECT_TRUE(OthersCanLock());
}

TEST_F(Notify, CopiesValueArgumentsForEachListener)
{
    Add({0, 1});
    std::vector<std::string> seen;
    const auto change = [&seen](QBXiPodTrackInfo& info)
    {
        seen.push_back(info.text1);
        info.text1 = "changed";
    };
    Listener(0).onTrack = change;
    Listener(1).onTrack = change;
    int index = 0;
    QBXiPodTrackInfo info;
    info.text1 = "as sent";

    qbx::Notify(m_registry, &Event::OnIpodPlayingTrackChange, index, info);

    EXPECT_EQ((std::vector<std::string>{"as sent", "as sent"}), seen);
    EXPECT_EQ("as sent", info.text1);
}

TEST_F(Notify, PassesReferencesToTheSameObject)
{
    Add({0, 1});
    Listener(0).onEapData = [](std::vector<unsigned char>& data) { data.push_back(9); };
    std::vector<unsigned char> seenByTheSecond;
    Listener(1).onEapData = [&](std::vector<unsigned char>& data) { seenByTheSecond = data; };
    unsigned short session = 1;
    std::vector<unsigned char> data = {1};

    qbx::Notify(m_registry, &Event::OnIpodReceiveEapData, session, data);

    EXPECT_EQ((std::vector<unsigned char>{1, 9}), seenByTheSecond);
}
