// Objects may be destroyed at any step: after every number of main-loop iterations, until nothing is left to do.
#include <ipodkit/accessory.h>
#include <ipodkit/audio_source.h>
#include <ipodkit/pager.h>

#include <thread>

#include "kit/kit_test.h"

namespace test
{
namespace
{
constexpr int kSteps = 60;

class AnyStepTest : public ServedTest
{
protected:
    AnyStepTest()
    {
        service.Answer("Next", "(true,)");
        service.Answer("GetPlayingListItems", "(true,)");
        service.Answer("EapWrite", "(true,)");
        shared.SetList("VecPlayingListShareMemory", {"a", "b", "c"});
    }

    static void Turn(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            const guint wake = g_timeout_add(
                1, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
            g_main_context_iteration(nullptr, TRUE);
            g_source_remove(wake);
        }
    }
};

TEST_F(AnyStepTest, ASessionMayBeDestroyed)
{
    for (int step = 0; step < kSteps; ++step)
    {
        Open();
        Turn(step);
        session.reset();
    }

    Ready(1);
    EXPECT_EQ(State()->track->title, "Song");
    EXPECT_EQ(CountLogLines("40 InitShareMemory: InitShareMemory()"), 1U);
}

TEST_F(AnyStepTest, ASessionMayBeDestroyedWithPendingRequests)
{
    int completed = 0;
    for (int step = 0; step < kSteps; ++step)
    {
        Open();
        Ask().Next().Start([&completed](const Result<void>&) { ++completed; });
        Turn(step);
        session.reset();
        EXPECT_EQ(completed, step + 1);
    }
}

TEST_F(AnyStepTest, ARequestMayBeCancelled)
{
    int cancelled = 0;
    for (int step = 0; step < kSteps; ++step)
    {
        Open();
        Turn(step / 2);
        const Cancellation stop;
        std::vector<Result<void>> results;
        Ask().Next().CancelledBy(stop).Start([&](Result<void> done) { results.push_back(std::move(done)); });
        Turn(step % 4);
        stop.Cancel();
        ASSERT_TRUE(RunLoopUntil([&] { return !results.empty(); }));
        Turn(5);
        ASSERT_EQ(results.size(), 1U);
        EXPECT_TRUE(results[0] || results[0].error().kind == ErrorKind::Cancelled);
        cancelled += results[0] ? 0 : 1;
        session.reset();
    }

    EXPECT_GT(cancelled, 0);
}

TEST_F(AnyStepTest, APagerMayBeDestroyed)
{
    Ready();
    for (int step = 0; step < kSteps; ++step)
    {
        int completed = 0;
        {
            Pager pager(*session, ListKind::Playing);
            pager.At(1).Start([&completed](const Result<PagePtr>&) { ++completed; });
            Turn(step % 20);
        }
        EXPECT_EQ(completed, 1);
    }

    Pager pager(*session, ListKind::Playing);
    EXPECT_EQ(Completed(pager.At(1)).value()->At(1), "b");
}

TEST_F(AnyStepTest, AnAccessoryPortMayBeDestroyedDuringAWrite)
{
    Ready();
    Emit("OnIpodStartEapSession", "(3, 300)");
    for (int step = 0; step < kSteps; ++step)
    {
        int completed = 0;
        {
            AccessoryOptions small;
            small.chunk = 10;
            AccessoryPort port(*session, small);
            port.Sessions().at(0)->Write(Bytes(100)).Start([&completed](const Result<void>&) { ++completed; });
            Turn(step);
        }
        EXPECT_EQ(completed, 1);
    }
}

TEST_F(AnyStepTest, TheServiceMayVanish)
{
    std::uint32_t generation = 1;
    Ready(generation);
    service.Vanish();
    for (int step = 0; step < kSteps; ++step)
    {
        FakeService next;
        ++generation;
        AnswerState(next);
        ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().generation == generation; }));
        Turn(step);
        next.Vanish();
        ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().phase == Phase::Lost; }));
    }

    AnsweringService last;
    Ready(generation + 1);
    EXPECT_EQ(State()->track->title, "Song");
}

TEST_F(AnyStepTest, FourThreadsMaySubscribeAndUnsubscribeDuringEvents)
{
    Ready();
    std::atomic<int> working{4};
    std::atomic<int> calls{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            [&]
            {
                for (int n = 0; n < 100 || (calls == 0 && n < 100000); ++n)
                {
                    Subscription states = session->OnState("thread", [&calls](const StatePtr&, Fields) { ++calls; });
                    const Subscription steps =
                        session->OnConnection("thread", [&calls](const Connection&) { ++calls; });
                    if (n % 3 == 0) std::this_thread::sleep_for(1ms);
                    states.Reset();
                    (void)State()->version;
                }
                --working;
            });
    int sent = 0;
    const auto emit = [&]
    {
        service.Emit("OnIpodPlayingListAmountChange", "(" + std::to_string(++sent) + ",)");
        return working == 0;
    };

    EXPECT_TRUE(RunLoopUntil(emit, 20s));

    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(RunLoopUntil([&] { return State()->queueSize == sent; }));
    EXPECT_GT(calls, 0);
}
}  // namespace
}  // namespace test
