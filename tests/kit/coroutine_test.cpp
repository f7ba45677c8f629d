#include <ipodkit/coroutine.h>
#include <ipodkit/pager.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <thread>

#include "kit/kit_test.h"

#ifdef COUNTS_ALLOCATIONS
namespace
{
std::atomic<std::size_t> allocations{0};
}

// These replace the operators of the whole process. If they were inlined, their calls of malloc() and free() would look
// mismatched.
__attribute__((noinline)) void* operator new(std::size_t size)
{
    ++allocations;
    void* const memory = std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

__attribute__((noinline)) void operator delete(void* memory) noexcept
{
    std::free(memory);
}

__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
#endif

namespace test
{
namespace
{
class CoroutineTest : public ReadyTest
{
protected:
    CoroutineTest()
    {
        service.Answer("Next", "(true,)");
        service.Answer("EnterDbRoot", "(true,)");
        service.Answer("GetCurDbListItemsAmount", "(7,)");
        service.Answer("GetDeviceAmount", "(2,)");
    }

    bool Ended()
    {
        return RunLoopUntil([this] { return tasks->Empty(); });
    }

    std::unique_ptr<Tasks> tasks = std::make_unique<Tasks>();
};

// Records the destruction of the coroutine frame that contains it.
struct Witness
{
    explicit Witness(bool& flag) : destroyed(flag) {}
    ~Witness() { destroyed = true; }
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    bool& destroyed;
};

Task<> Store(Request<int> request, std::optional<Result<int>>& result)
{
    result = co_await std::move(request);
}

Task<int> Twice(Commands commands)
{
    const Result<int> count = co_await commands.DeviceCount();
    co_return 2 * count.value();
}

Task<> Sum(Commands commands, int& sum)
{
    sum = co_await Twice(commands) + co_await Twice(commands);
}

Task<> Throw(Commands commands)
{
    (void)co_await commands.DeviceCount();
    throw std::runtime_error("broken");
}

Task<> Catch(Commands commands, std::string& caught)
{
    try
    {
        co_await Throw(commands);
    }
    catch (const std::runtime_error& thrown)
    {
        caught = thrown.what();
    }
}

Task<> Watched(Request<int> request, bool& destroyed, bool& resumed)
{
    const Witness witness(destroyed);
    (void)co_await std::move(request);
    resumed = true;
}

Task<> Outer(Request<int> request, bool& destroyed, bool& resumed)
{
    co_await Watched(std::move(request), destroyed, resumed);
}

Task<> EndOwner(Commands commands, std::unique_ptr<Tasks>& owner, bool& destroyed, bool& resumed)
{
    const Witness witness(destroyed);
    (void)co_await commands.DeviceCount();
    owner.reset();
    EXPECT_FALSE(destroyed);
    (void)co_await commands.Next();
    resumed = true;
}

Task<> CountOn(Pager& pager, int rounds, int& failures)
{
    for (int i = 0; i < rounds; ++i)
        if (!co_await pager.Count()) ++failures;
}

Task<> Follow(Session& session, std::vector<int>& indices)
{
    while (const Result<StatePtr> state = co_await session.Changed(Field::TrackIndex))
        indices.push_back((*state)->trackIndex.value_or(-1));
}

TEST_F(CoroutineTest, AwaitsARequest)
{
    std::optional<Result<int>> result;

    tasks->Start(Store(Ask().DeviceCount(), result));

    EXPECT_FALSE(result);
    EXPECT_TRUE(Ended());
    EXPECT_EQ(result->value(), 2);
}

TEST_F(CoroutineTest, AwaitsPagersAndChains)
{
    Pager pager(*session, ListKind::Database);
    std::optional<Result<int>> count;
    std::optional<Result<int>> chained;

    tasks->Start(Store(pager.Count(), count));
    tasks->Start(Store(Ask().EnterRoot().AndThen([ask = Ask()] { return ask.DatabaseCount(); }).Within(1s), chained));

    EXPECT_TRUE(Ended());
    EXPECT_EQ(chained->value(), 7);
    ASSERT_TRUE(count);
}

TEST_F(CoroutineTest, AwaitsChangesOfTheState)
{
    std::vector<int> indices;
    tasks->Start(Follow(*session, indices));

    for (const int index : {4, 5})
    {
        service.Emit("OnIpodPlayingTrackChange", TrackEvent(index, "Song"));
        Settle(service);
        service.Emit("OnIpodShuffleModeChange", index == 4 ? "(1,)" : "(0,)");
        Settle(service);
    }

    EXPECT_THAT(indices, ElementsAre(4, 5));
    session.reset();
    EXPECT_TRUE(tasks->Empty());
}

TEST_F(CoroutineTest, ResumesInTheContext)
{
    const std::thread::id here = std::this_thread::get_id();
    std::thread::id there;
    const auto note = [](Commands commands, std::thread::id& thread) -> Task<>
    {
        (void)co_await commands.DeviceCount();
        thread = std::this_thread::get_id();
    };

    tasks->Start(note(Ask(), there));

    EXPECT_TRUE(Ended());
    EXPECT_EQ(there, here);
}

TEST_F(CoroutineTest, AwaitsOtherTasks)
{
    int sum = 0;

    tasks->Start(Sum(Ask(), sum));

    EXPECT_TRUE(Ended());
    EXPECT_EQ(sum, 8);
}

TEST_F(CoroutineTest, AnExceptionReachesTheTaskThatAwaits)
{
    std::string caught;

    tasks->Start(Catch(Ask(), caught));

    EXPECT_TRUE(Ended());
    EXPECT_EQ(caught, "broken");
}

TEST_F(CoroutineTest, AnUncaughtExceptionIsLogged)
{
    tasks->Start(Throw(Ask()));

    EXPECT_TRUE(Ended());
    EXPECT_EQ(CountLogLines("80 LogWarning: callback 'task' threw: broken"), 1U);
}

TEST_F(CoroutineTest, TheEndOfItsOwnerDestroysTheFrameAtItsSuspensionPoint)
{
    service.Hold("GetDeviceAmount");
    bool destroyed = false;
    bool resumed = false;
    tasks->Start(Outer(Ask().DeviceCount(), destroyed, resumed));
    ASSERT_TRUE(RunLoopUntil([&] { return Calls("GetDeviceAmount()") >= 2; }));

    tasks.reset();

    EXPECT_TRUE(destroyed);
    service.AnswerHeld("(2,)");
    RunLoopFor(20ms);
    EXPECT_FALSE(resumed);
}

TEST_F(CoroutineTest, TheEndOfItsOwnerWithdrawsAQueuedRequest)
{
    service.Hold("GetCurDbListItemsAmount");
    Pager pager(*session, ListKind::Database);
    pager.Count().Start([](Result<int>) {});
    ASSERT_TRUE(RunLoopUntil([&] { return Calls("GetCurDbListItemsAmount(false,)") == 1; }));
    std::optional<Result<int>> result;
    tasks->Start(Store(pager.EnterRoot().AndThen([ask = Ask()] { return ask.DeviceCount(); }), result));

    tasks.reset();
    service.AnswerHeld("(7,)");
    RunLoopFor(50ms);

    EXPECT_FALSE(result);
    EXPECT_EQ(Calls("EnterDbRoot()"), 0);
}

TEST_F(CoroutineTest, ATaskMayEndItsOwner)
{
    bool destroyed = false;
    bool resumed = false;

    tasks->Start(EndOwner(Ask(), tasks, destroyed, resumed));

    EXPECT_TRUE(RunLoopUntil([&] { return destroyed; }));
    RunLoopFor(20ms);
    EXPECT_FALSE(resumed);
    EXPECT_EQ(Calls("Next()"), 0);
}

#ifdef COUNTS_ALLOCATIONS
// Awaited one at a time, like those of a task.
void StartInTurn(Pager& pager, int times, int& left)
{
    left = times;
    if (times > 0)
        pager.Count().Start([&pager, times, &left](const Result<int>&) { StartInTurn(pager, times - 1, left); });
}

TEST_F(CoroutineTest, AnAwaitAllocatesAtMostOnceMoreThanStart)
{
    constexpr int kTimes = 1000;
    Pager pager(*session, ListKind::Database);
    int failures = 0;
    tasks->Start(CountOn(pager, 1, failures));
    ASSERT_TRUE(Ended());

    int left = 0;
    const std::size_t begin = allocations;
    StartInTurn(pager, kTimes, left);
    ASSERT_TRUE(RunLoopUntil([&left] { return left == 0; }));
    const std::size_t started = allocations - begin;
    tasks->Start(CountOn(pager, kTimes, failures));
    ASSERT_TRUE(Ended());
    const std::size_t awaited = allocations - begin - started;

    EXPECT_GE(started, kTimes);
    EXPECT_LE(awaited, started + kTimes);
    EXPECT_EQ(failures, 0);
}
#endif

// A million awaits of cached pages, so that the service need not answer as often.
TEST_F(CoroutineTest, AMillionAwaitsLeakNothing)
{
    Pager pager(*session, ListKind::Database);
    int failures = 0;
    tasks->Start(CountOn(pager, 1000, failures));
    EXPECT_TRUE(Ended());
    const std::size_t before = mallinfo2().uordblks;

    tasks->Start(CountOn(pager, 1'000'000, failures));

    EXPECT_TRUE(RunLoopUntil([this] { return tasks->Empty(); }, 300s));
    EXPECT_EQ(failures, 0);
    // Less than a byte for each: other threads allocate, too.
    EXPECT_LT(mallinfo2().uordblks, before + 1'000'000);
}

TEST_F(CoroutineTest, TheEndOfTheSessionResumesWithAnError)
{
    service.Hold("GetDeviceAmount");
    std::optional<Result<int>> result;
    tasks->Start(Store(Ask().DeviceCount(), result));

    session.reset();

    ASSERT_TRUE(result);
    EXPECT_EQ(KindOf(*result), ErrorKind::Cancelled);
    EXPECT_TRUE(tasks->Empty());
}

TEST_F(CoroutineTest, ARequestThatIsNotAwaitedIsHarmless)
{
    std::optional<Result<int>> result;
    {
        const Task<> never = Store(Ask().DeviceCount(), result);
    }
    EXPECT_FALSE(result);
}
}  // namespace
}  // namespace test
