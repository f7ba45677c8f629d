// Features common to all requests: deadlines, cancellation, composition, waiting.
#include <ipodkit/accessory.h>
#include <ipodkit/audio_source.h>
#include <ipodkit/pager.h>

#include <stdexcept>
#include <thread>

#include "kit/kit_test.h"

namespace test
{
namespace
{
class RequestTest : public ReadyTest
{
protected:
    RequestTest()
    {
        service.Answer("EnterDbRoot", "(true,)");
        service.Answer("GetCurDbListItemsAmount", "(7,)");
    }

    // Enters the root and then reads the size of the level.
    Request<int> RootCount() const
    {
        return Ask().EnterRoot().AndThen([ask = Ask()] { return ask.DatabaseCount(); });
    }

    // Runs the loop on this thread while @p work runs on another.
    template <class Work>
    static auto OnAnotherThread(Work work)
    {
        std::atomic<bool> done{false};
        std::optional<std::invoke_result_t<Work>> result;
        std::thread thread(
            [&]
            {
                result = work();
                done = true;
            });
        EXPECT_TRUE(RunLoopUntil([&] { return done.load(); }));
        thread.join();
        return *std::move(result);
    }
};

TEST_F(RequestTest, TheResultOfAChainIsThatOfItsLastPart)
{
    EXPECT_EQ(Completed(RootCount()).value(), 7);

    const auto name = [ask = Ask()](int count)
    {
        EXPECT_EQ(count, 7);
        return ask.IpodName();
    };
    EXPECT_EQ(Completed(RootCount().AndThen(name)).value(), "Phone");
}

TEST_F(RequestTest, AnErrorEndsAChain)
{
    service.Answer("EnterDbRoot", "(false,)");

    EXPECT_EQ(KindOf(Completed(RootCount())), ErrorKind::Refused);

    EXPECT_EQ(Calls("GetCurDbListItemsAmount(false,)"), 0);
}

TEST_F(RequestTest, EachPartOfAChainKeepsItsDeadline)
{
    service.Hold("GetCurDbListItemsAmount");

    const auto count = [ask = Ask()] { return ask.DatabaseCount().Within(50ms); };

    EXPECT_EQ(KindOf(Completed(Ask().EnterRoot().AndThen(count))), ErrorKind::TimedOut);
}

TEST_F(RequestTest, TheDeadlineOfAChainCoversAllParts)
{
    service.On("EnterDbRoot", [](GVariant*) { return Reply::With("(true,)").After(60); });
    service.Hold("GetCurDbListItemsAmount");
    const auto start = std::chrono::steady_clock::now();

    EXPECT_EQ(KindOf(Completed(RootCount().Within(150ms))), ErrorKind::TimedOut);

    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
    EXPECT_EQ(Calls("GetCurDbListItemsAmount(false,)"), 1);
}

TEST_F(RequestTest, APartThatWouldStartAfterTheDeadlineIsNotSent)
{
    const auto slow = [ask = Ask()]
    {
        std::this_thread::sleep_for(60ms);
        return ask.DatabaseCount();
    };

    EXPECT_EQ(KindOf(Completed(Ask().EnterRoot().AndThen(slow).Within(50ms))), ErrorKind::TimedOut);

    EXPECT_EQ(Calls("GetCurDbListItemsAmount(false,)"), 0);
}

TEST_F(RequestTest, CancellationReachesThePendingPart)
{
    for (const char* const member : {"EnterDbRoot", "GetCurDbListItemsAmount"})
    {
        service.Hold(member);
        const Cancellation stop;
        const Pending result(RootCount().CancelledBy(stop));
        RunLoopFor(50ms);
        EXPECT_FALSE(result.Done());

        stop.Cancel();

        EXPECT_EQ(KindOf(result.Get(500ms)), ErrorKind::Cancelled);
        service.Answer(member, "(true,)");
    }
}

TEST_F(RequestTest, APartObeysItsOwnCancellationAndThatOfTheWhole)
{
    service.Hold("EnterDbRoot");
    for (const bool own : {true, false})
    {
        const Cancellation part;
        const Cancellation whole;
        const Pending result(Ask()
                                 .EnterRoot()
                                 .CancelledBy(part)
                                 .AndThen([ask = Ask()] { return ask.DatabaseCount(); })
                                 .CancelledBy(whole));
        RunLoopFor(20ms);

        (own ? part : whole).Cancel();

        EXPECT_EQ(KindOf(result.Get(500ms)), ErrorKind::Cancelled);
    }
}

TEST_F(RequestTest, AnExceptionBetweenThePartsIsLoggedAndCompletesTheChain)
{
    const auto broken = [ask = Ask()]() -> Request<int> { throw std::runtime_error("broken"); };

    EXPECT_EQ(KindOf(Completed(Ask().EnterRoot().AndThen(broken))), ErrorKind::Cancelled);

    EXPECT_EQ(CountLogLines("80 LogWarning: callback 'EnterDbRoot' threw: broken"), 1U);
}

TEST_F(RequestTest, AChainEndsWithTheSession)
{
    service.Hold("GetCurDbListItemsAmount");
    const Pending result(RootCount());
    ASSERT_TRUE(RunLoopUntil([&] { return Calls("GetCurDbListItemsAmount(false,)") == 1; }));

    session.reset();

    ASSERT_TRUE(result.Done());
    EXPECT_EQ(KindOf(result.Get()), ErrorKind::Cancelled);
}

TEST_F(RequestTest, AChainOfCommandsBlocksWhereTheContextRunsAndElsewhere)
{
    EXPECT_EQ(RootCount().Wait().value(), 7);
    EXPECT_EQ(OnAnotherThread([this] { return RootCount().Wait(); }).value(), 7);
}

TEST_F(RequestTest, FunctionsOfAChainRunInTheContext)
{
    const std::thread::id here = std::this_thread::get_id();
    std::thread::id there;
    const auto work = [&]
    {
        return Ask()
            .EnterRoot()
            .AndThen(
                [&]
                {
                    there = std::this_thread::get_id();
                    return Ask().DatabaseCount();
                })
            .Wait();
    };

    EXPECT_TRUE(OnAnotherThread(work));

    EXPECT_EQ(there, here);
}

TEST_F(RequestTest, DeadlinesBelowAMillisecondAreNotAccepted)
{
    Pager pager(*session, ListKind::Database);
    AudioSource source(*session, 0);
    for (const std::chrono::milliseconds deadline : {0ms, -1ms})
    {
        EXPECT_EQ(KindOf(Completed(Ask().Next().Within(deadline))), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Ask().Next().Within(deadline).Wait()), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Completed(RootCount().Within(deadline))), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Completed(pager.Count().Within(deadline))), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Completed(pager.EnterRoot().Within(deadline))), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Completed(source.Play().Within(deadline))), ErrorKind::BadArgument);
    }
    EXPECT_EQ(Calls("Next()") + Calls("EnterDbRoot()") + Calls("GetCurDbListItemsAmount(false,)"), 0);
}

TEST_F(RequestTest, ADeadlineMayBeArbitrarilyLong)
{
    Pager pager(*session, ListKind::Database);

    EXPECT_TRUE(Completed(pager.Count().Within(std::chrono::milliseconds::max())));
    EXPECT_TRUE(Completed(RootCount().Within(std::chrono::milliseconds::max())));
}

TEST_F(RequestTest, PagerRequestsHaveDeadlines)
{
    service.Hold("GetCurDbListItemsAmount");
    Pager pager(*session, ListKind::Database);
    const auto start = std::chrono::steady_clock::now();

    EXPECT_EQ(KindOf(Completed(pager.Count().Within(50ms))), ErrorKind::TimedOut);
    EXPECT_EQ(KindOf(Completed(pager.At(3).Within(50ms))), ErrorKind::TimedOut);
    EXPECT_EQ(KindOf(Completed(pager.Range(0, Pager::End).Within(50ms))), ErrorKind::TimedOut);

    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
    service.AnswerHeld("(7,)");
    EXPECT_EQ(Completed(pager.Count()).value(), 7);
}

TEST_F(RequestTest, PagerRequestsHaveTheDeadlineOfTheSession)
{
    session.reset();
    options.deadline = 100ms;
    Ready();
    service.Hold("GetCurDbListItemsAmount");
    Pager pager(*session, ListKind::Database);

    EXPECT_EQ(KindOf(Completed(pager.Count())), ErrorKind::TimedOut);
    EXPECT_EQ(KindOf(Completed(pager.At(1))), ErrorKind::TimedOut);
}

TEST_F(RequestTest, PagerRequestsCanBeCancelled)
{
    service.Hold("GetCurDbListItemsAmount");
    Pager pager(*session, ListKind::Database);
    const Cancellation stop;
    std::vector<ErrorKind> kinds;
    const auto record = [&kinds](const auto& result) { kinds.push_back(KindOf(result)); };
    pager.Count().CancelledBy(stop).Start(record);
    pager.At(3).CancelledBy(stop).Start(record);
    pager.Range(0, 3).CancelledBy(stop).Start(record);
    RunLoopFor(20ms);
    EXPECT_THAT(kinds, IsEmpty());

    std::thread([&stop] { stop.Cancel(); }).join();

    EXPECT_TRUE(RunLoopUntil([&] { return kinds.size() == 3; }, 500ms));
    EXPECT_THAT(kinds, testing::Each(ErrorKind::Cancelled));
}

TEST_F(RequestTest, ACancelledLevelChangeIsNotSent)
{
    Pager pager(*session, ListKind::Database);
    const Cancellation stop;
    stop.Cancel();

    EXPECT_EQ(KindOf(Completed(pager.EnterRoot().CancelledBy(stop))), ErrorKind::Cancelled);

    EXPECT_EQ(Calls("EnterDbRoot()"), 0);
}

TEST_F(RequestTest, AFutureDoesNotWaitOnTheThreadOfTheContext)
{
    service.Hold("Next");
    Future<void> future = Ask().Next().Future();
    std::optional<Result<void>> inside;
    Ask().DeviceCount().Start([&](const Result<int>&) { inside = future.get(); });

    ASSERT_TRUE(RunLoopUntil([&] { return inside.has_value(); }));
    EXPECT_EQ(KindOf(*inside), ErrorKind::WouldDeadlock);
    EXPECT_THAT(inside->error().reason, HasSubstr("another thread"));
    EXPECT_EQ(KindOf(future.get()), ErrorKind::WouldDeadlock) << "outside of callbacks";
    EXPECT_EQ(future.wait_for(10s), std::future_status::timeout);

    ASSERT_TRUE(future.valid());
    service.AnswerHeld("(true,)");
    EXPECT_TRUE(RunLoopUntil([&] { return future.wait_for(0s) == std::future_status::ready; }));
    EXPECT_TRUE(future.get());
    EXPECT_FALSE(future.valid());
}

TEST_F(RequestTest, OnlyRefusalsAndCancellationsLackARemedy)
{
    std::vector<std::string> without;
    for (int kind = 0; kind <= static_cast<int>(ErrorKind::WouldDeadlock); ++kind)
        if (*Remedy(ErrorKind{kind}) == '\0') without.emplace_back(Name(ErrorKind{kind}));
    EXPECT_THAT(without, ElementsAre("Refused", "Cancelled"));
}

// Drops the completion, like a context that is destroyed with its sources.
class Forgetting final : public ipodkit::detail::Operation<int>
{
public:
    using Operation::Operation;
    void Start(Completion) override {}
    void Withdraw() override {}
};

TEST_F(RequestTest, AFutureThatCanNoLongerBeFulfilledReturnsAnError)
{
    const auto forgetting = std::make_shared<Forgetting>(Ask().Next().Inside()->home, ipodkit::detail::Terms());
    Future<int> future = Request<int>(forgetting).Future();

    EXPECT_EQ(KindOf(future.get()), ErrorKind::Cancelled);
    EXPECT_FALSE(future.valid());
}

TEST_F(RequestTest, AFutureOfAnEndedSessionDoesNotWait)
{
    const Commands commands = Ask();
    session.reset();

    std::thread(
        [&commands]
        {
            Future<void> future = commands.Next().Future();
            ASSERT_EQ(future.wait_for(10s), std::future_status::ready);
            EXPECT_EQ(KindOf(future.get()), ErrorKind::Cancelled);
            EXPECT_FALSE(future.valid());
        })
        .join();
}

TEST_F(RequestTest, PagerRequestsDoNotWaitOnTheThreadOfTheContext)
{
    Pager pager(*session, ListKind::Database);

    EXPECT_EQ(KindOf(pager.Count().Wait()), ErrorKind::WouldDeadlock);
    EXPECT_EQ(KindOf(pager.EnterRoot().Wait()), ErrorKind::WouldDeadlock);

    EXPECT_EQ(Calls("GetCurDbListItemsAmount(false,)") + Calls("EnterDbRoot()"), 0);
}

TEST_F(RequestTest, PagerRequestsMayBeMadeAndAwaitedOnOtherThreads)
{
    Pager pager(*session, ListKind::Database);

    EXPECT_EQ(OnAnotherThread([&] { return pager.Count().Wait(); }).value(), 7);
    EXPECT_EQ(OnAnotherThread([&] { return pager.Count().Future().get(); }).value(), 7);
}

TEST_F(RequestTest, PagerRequestsStartedOnOtherThreadsEndWithTheSession)
{
    Pager pager(*session, ListKind::Database);
    std::optional<Result<int>> result;
    std::thread([&] { pager.Count().Start([&result](Result<int> count) { result = std::move(count); }); }).join();

    session.reset();

    ASSERT_TRUE(result);
    EXPECT_EQ(KindOf(*result), ErrorKind::Cancelled);
}

TEST_F(RequestTest, PagerRequestsAreCancelledOnceThePagerEnded)
{
    auto pager = std::make_unique<Pager>(*session, ListKind::Database);
    Request<int> count = pager->Count();
    pager.reset();

    const Result<int> result = Completed(std::move(count));

    EXPECT_EQ(KindOf(result), ErrorKind::Cancelled);
    EXPECT_EQ(result.error().reason, "the pager ended");
}

TEST_F(RequestTest, AnAccessoryWriteHasADeadlineAndACancellation)
{
    service.Hold("EapWrite");
    AccessoryPort port(*session);
    Emit("OnIpodStartEapSession", "(3, 1)");
    const AccessorySessionPtr peer = port.Sessions().at(0);
    const Cancellation stop;

    EXPECT_EQ(KindOf(Completed(peer->Write({1}).Within(50ms))), ErrorKind::TimedOut);
    const Pending second(peer->Write({2}).CancelledBy(stop));
    stop.Cancel();
    EXPECT_EQ(KindOf(second.Get()), ErrorKind::Cancelled);
    service.Answer("EapWrite", "(true,)");
    service.AnswerHeld("(true,)");

    EXPECT_TRUE(Completed(peer->Write({3})));
    EXPECT_EQ(peer->Waiting(), 0U);
    EXPECT_EQ(Calls("EapWrite(uint16 1,)") + Calls("EapWrite(1,)"), 2) << "what was withdrawn before its turn was sent";
}

TEST_F(RequestTest, AWriteThatIsWithdrawnHalfwayEndsTheOthersToo)
{
    service.Hold("EapWrite");
    AccessoryOptions small;
    small.chunk = 1;
    AccessoryPort port(*session, small);
    Emit("OnIpodStartEapSession", "(3, 1)");
    const AccessorySessionPtr peer = port.Sessions().at(0);
    std::vector<ErrorKind> kinds;
    const auto record = [&kinds](const Result<void>& result) { kinds.push_back(KindOf(result)); };
    peer->Write({1, 2}).Within(50ms).Start(record);
    peer->Write({3}).Start(record);
    ASSERT_TRUE(RunLoopUntil([&] { return kinds.size() == 1; }));

    service.AnswerHeld("(true,)");

    ASSERT_TRUE(RunLoopUntil([&] { return kinds.size() == 2; }));
    EXPECT_THAT(kinds, ElementsAre(ErrorKind::TimedOut, ErrorKind::Cancelled));
    EXPECT_EQ(peer->Waiting(), 0U);
}

TEST_F(RequestTest, EitherOfTwoCancellationsTriggersTheirCombination)
{
    for (const bool first : {true, false})
    {
        const Cancellation one;
        const Cancellation other;
        const Cancellation both = Cancellation::Either(one, other);
        EXPECT_FALSE(both.Cancelled());

        (first ? one : other).Cancel();

        EXPECT_TRUE(both.Cancelled());
        EXPECT_TRUE(Cancellation::Either(one, other).Cancelled());
    }
}
}  // namespace
}  // namespace test
