#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>

#include "kit/kit_test.h"
#include "kit/ticker.h"
#include "support/recording_listener.h"

namespace test
{
namespace
{
// Far below anything that could block here (deadlines, locks, creators at work), above the noise of a busy machine.
constexpr auto kNotBlocked = 50ms;

class SessionTest : public KitTest
{
protected:
    std::vector<std::string> Phases() const { return m_phases; }

    void RecordPhases()
    {
        m_watching = session->OnConnection(
            "phases", [this](const Connection& connection)
            { m_phases.push_back(std::string(Name(connection.phase)) + " " + std::to_string(connection.generation)); });
    }

private:
    std::vector<std::string> m_phases;
    Subscription m_watching;
};

TEST_F(SessionTest, GoesFromAbsentToReady)
{
    FakeService service;
    AnswerState(service);
    Open();
    RecordPhases();

    Ready();

    EXPECT_THAT(Phases(), ElementsAre("Absent 0", "Connecting 1", "Ready 1"));
}

TEST_F(SessionTest, WaitsForAServiceThatComesLater)
{
    Open();
    RecordPhases();
    RunLoopFor(50ms);

    FakeService service;
    AnswerState(service);
    Ready();

    EXPECT_EQ(Phases().back(), "Ready 1");
}

TEST_F(SessionTest, IsLostWithTheServiceAndReadyWithTheNext)
{
    auto service = std::make_unique<FakeService>();
    AnswerState(*service);
    Ready();
    RecordPhases();
    RunLoopFor(1ms);

    service.reset();
    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().phase == Phase::Lost; }));
    FakeService next;
    AnswerState(next);
    Ready(2);

    EXPECT_THAT(Phases(), ElementsAre("Ready 1", "Lost 1", "Connecting 2", "Ready 2"));
}

TEST_F(SessionTest, InitialisesThePlayerOnce)
{
    for (std::uint32_t generation = 1; generation <= 3; ++generation)
    {
        FakeService service;
        AnswerState(service);
        Ready(generation);
    }

    EXPECT_EQ(CountLogLines("40 InitInstance: InitInstance()"), 1U);
}

TEST_F(SessionTest, ThereIsOneAtATime)
{
    Open();

    const auto second = Session::Open();

    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().kind, ErrorKind::BadArgument);
}

TEST_F(SessionTest, ASecondOneMayFollowInTheSameContext)
{
    FakeService service;
    AnswerState(service);
    Ready();
    session.reset();

    Ready();
    service.Emit("OnPlayStatusChanged", "(2,)");

    EXPECT_TRUE(RunLoopUntil([&] { return session->State()->status == IPOD_PLAY_STATUS_PAUSED; }));
    EXPECT_EQ(CountLogLines("40 InitInstance: InitInstance()"), 1U);
}

TEST_F(SessionTest, ALaterOneInAnotherContextIsRefused)
{
    Open();
    session.reset();
    GMainContext* const other = g_main_context_new();
    SessionOptions elsewhere;
    elsewhere.context = other;

    const auto second = Session::Open(elsewhere);

    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().kind, ErrorKind::BadArgument);
    g_main_context_unref(other);
}

TEST_F(SessionTest, LivesInAContextOfTheApplication)
{
    FakeService service;
    AnswerState(service);
    GMainContext* const own = g_main_context_new();
    SessionOptions elsewhere;
    elsewhere.context = own;
    Open(elsewhere);
    const auto limit = std::chrono::steady_clock::now() + 5s;
    bool paused = false;
    const Subscription watching = session->OnState(
        "status", [&](const StatePtr& state, Fields) { paused = state->status == IPOD_PLAY_STATUS_PAUSED; });

    while (session->Connection().phase != Phase::Ready && std::chrono::steady_clock::now() < limit)
        g_main_context_iteration(own, FALSE);
    service.Emit("OnPlayStatusChanged", "(2,)");
    while (!paused && std::chrono::steady_clock::now() < limit) g_main_context_iteration(own, FALSE);

    EXPECT_TRUE(paused);
    session.reset();
    g_main_context_unref(own);
}

TEST_F(SessionTest, AHangingServiceDoesNotBlockTheLoop)
{
    FakeService service;
    service.Hold("GetPlayStatus");
    options.deadline = 100ms;
    Open(options);
    RunLoopFor(20ms);
    const Ticker ticker;

    RunLoopFor(1s);

    EXPECT_EQ(CountLogLines("40 InitInstance: InitInstance()"), 0U);
    EXPECT_EQ(session->Connection().phase, Phase::Connecting);
    EXPECT_EQ(session->Connection().error->kind, ErrorKind::TimedOut);
    EXPECT_LE(ticker.Longest(), kNotBlocked);
}

TEST_F(SessionTest, BecomesReadyWhenAHangingServiceWakesUp)
{
    FakeService service;
    AnswerState(service);
    service.Hold("GetPlayStatus");
    options.deadline = 100ms;
    Open(options);
    RunLoopFor(300ms);

    service.Answer("GetPlayStatus", "(1,)");

    Ready();
    EXPECT_FALSE(session->Connection().error);
}

TEST_F(SessionTest, IsReadyAlsoWhenTheServiceRefusesToTellSomething)
{
    FakeService service;
    AnswerState(service);
    service.Fail("GetIpodName", "no");
    Ready();

    EXPECT_FALSE(session->State()->deviceName);
    EXPECT_EQ(session->State()->queueSize, 3);
}

// The lock is given up on after ten seconds.
TEST_F(SessionTest, ASegmentThatADeadProcessLockedIsAnErrorWithARemedy)
{
    QBXSharedSegment segment(boost::interprocess::open_or_create, kListSegmentName, 65536);
    const pid_t child = fork();
    if (child == 0)
    {
        auto die = [] { _exit(0); };
        segment.atomic_func(die);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    FakeService service;
    AnswerState(service);
    Open();

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }, 20s));

    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoSharedMemory);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("locked by a process that died"));
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("remove /dev/shm/ListVectorSharedMemory"));

    shm_unlink(kListSegmentName);
    Ready();
}

TEST_F(SessionTest, ASegmentOfAnotherUserIsAnErrorThatNamesBoth)
{
    constexpr uid_t kNobody = 65534;
    Open();
    RunLoopFor(50ms);
    FakeService service;
    AnswerState(service);
    const QBXSharedSegment segment(boost::interprocess::open_or_create, kListSegmentName, 65536);
    if (geteuid() != 0 || seteuid(kNobody) != 0) GTEST_SKIP() << "another user is there for the superuser only";

    const bool failed = RunLoopUntil([&] { return session->Connection().error.has_value(); });
    ASSERT_EQ(seteuid(0), 0);

    ASSERT_TRUE(failed);
    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoSharedMemory);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("belongs to user 0 and this process is user 65534"));
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("as one user"));
    Ready();
}

TEST_F(SessionTest, ASegmentOfAnotherSizeIsAnErrorWithARemedy)
{
    {
        const QBXSharedSegment segment(boost::interprocess::open_or_create, kBufferSegmentName, 65536);
    }
    ASSERT_EQ(truncate((std::string("/dev/shm/") + kBufferSegmentName).c_str(), 32768), 0);
    FakeService service;
    AnswerState(service);
    Open();

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));

    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoSharedMemory);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("remove /dev/shm/BufferVectorSharedMemory"));
}

TEST_F(SessionTest, ASegmentThatWasNeverFinishedIsAnErrorWithARemedy)
{
    const int file = shm_open(kListSegmentName, O_RDWR | O_CREAT, 0644);
    ASSERT_GE(file, 0);
    ASSERT_EQ(ftruncate(file, 4096), 0);
    close(file);
    FakeService service;
    AnswerState(service);
    Open();
    const Ticker ticker;

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }, 10s));

    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoSharedMemory);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("remove /dev/shm/ListVectorSharedMemory"));
    EXPECT_LE(ticker.Longest(), kNotBlocked);

    shm_unlink(kListSegmentName);
    Ready();
}

// As between the two steps in which a service makes it larger.
TEST_F(SessionTest, ASegmentWhoseObjectIsLongerThanItIsAttached)
{
    QBXSharedSegment(boost::interprocess::open_or_create, kListSegmentName, 65536);
    ASSERT_EQ(truncate((std::string("/dev/shm/") + kListSegmentName).c_str(), 65536 + 4096), 0);
    FakeService service;
    AnswerState(service);
    Open();

    Ready();
}

// A look at it from outside finds nothing wrong: that its vectors have no room is seen by the core only, which does not
// try twice.
TEST_F(SessionTest, ASegmentThatIsFullAsksForANewStart)
{
    QBXSharedSegment segment(boost::interprocess::open_or_create, kBufferSegmentName, 65536);
    for (std::size_t size = 65536; size > 0; size /= 2)
        while (segment.allocate(size, std::nothrow) != nullptr) continue;
    FakeService service;
    AnswerState(service);
    Open();

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));

    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoSharedMemory);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("remedy this and start the application again"));
    RecordPhases();
    shm_unlink(kBufferSegmentName);
    RunLoopFor(1500ms);
    EXPECT_THAT(Phases(), ElementsAre("Connecting 1")) << "the second attempt fails as the first did";
}

TEST_F(SessionTest, LosesAndDoublesNoEventInAThousandRestarts)
{
    struct Amounts : IQBXIpodPlayerListener
    {
        void OnIpodPlayingListAmountChange(int amount) override { seen.push_back(amount); }
        std::vector<int> seen;
    };
    Amounts amounts;
    Open();
    const Subscription listening = session->Listen("amounts", amounts);
    std::vector<int> sent;
    for (std::uint32_t generation = 1; generation <= 1000; ++generation)
    {
        FakeService service;
        service.Answer("GetPlayStatus", "(1,)");
        Ready(generation);
        for (int i = 0; i < 3; ++i)
        {
            sent.push_back(static_cast<int>(generation) * 3 + i);
            service.Emit("OnIpodPlayingListAmountChange", "(" + std::to_string(sent.back()) + ",)");
        }
        RunLoopUntil([&] { return amounts.seen.size() >= sent.size(); });
    }

    EXPECT_EQ(amounts.seen, sent);
}

TEST_F(SessionTest, CallbacksMayDestroyTheSessionAndNoneRunsAfterThat)
{
    FakeService service;
    AnswerState(service);
    Open();
    int late = 0;
    const auto count = [&] { late += session == nullptr ? 1 : 0; };
    const Subscription states = session->OnState("states", [&](const StatePtr&, Fields) { count(); });
    const Subscription watching = session->OnConnection("end",
                                                        [&](const Connection& connection)
                                                        {
                                                            if (connection.phase == Phase::Ready) session.reset();
                                                        });
    const Subscription steps = session->OnConnection("steps", [&](const Connection&) { count(); });

    EXPECT_TRUE(RunLoopUntil([&] { return session == nullptr; }));
    RunLoopFor(20ms);
    EXPECT_EQ(late, 0);
}

TEST_F(SessionTest, PublishesWithoutADescriptorForItsTimerToo)
{
    FakeService service;
    AnswerState(service);
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none{0, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    Open();
    setrlimit(RLIMIT_NOFILE, &usual);
    Ready();

    service.Emit("OnPlayStatusChanged", "(2,)");

    EXPECT_TRUE(RunLoopUntil([&] { return session->State()->status == IPOD_PLAY_STATUS_PAUSED; }));
    service.Emit("OnPlayStatusChanged", "(1,)");
    EXPECT_TRUE(RunLoopUntil([&] { return session->State()->status == IPOD_PLAY_STATUS_PLAYING; }));
}

TEST_F(SessionTest, TheEndOfTheBusIsTold)
{
    auto service = std::make_unique<FakeService>();
    AnswerState(*service);
    Ready();
    service.reset();

    bus.Stop();

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));
    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoBus);
    EXPECT_EQ(KindOf(Completed(session->Commands().Next())), ErrorKind::NoBus);
}

TEST_F(SessionTest, ListenersGetEveryEventOutsideTheListenerLock)
{
    FakeService service;
    AnswerState(service);
    Ready();
    Journal journal;
    RecordingListener listener(journal, "app");
    const Subscription listening = session->Listen("app", listener);

    service.Emit("OnPlayStatusChanged", "(2,)");
    service.Emit("OnIpodPlayingTrackChange", TrackEvent(7, "Other"));
    service.Emit("OnOOBPairingInfo", "('addr', [(0x01,), (0x02,)])");
    Settle(service);

    EXPECT_THAT(journal, ElementsAre("app.OnPlayStatusChanged(2)",
                                     R"(app.OnIpodPlayingTrackChange(7, "Other", "", "", "", 0, 0, 0, 0))",
                                     R"(app.OnOOBPairingInfo("addr", [01 02]))"));
}

TEST_F(SessionTest, AListenerMayWaitForAThreadThatWantsTheListenerLock)
{
    struct Waiting : IQBXIpodPlayerListener
    {
        void OnPlayStatusChanged(iPodPlayerPlayStatus) override
        {
            std::future<void> locked = std::async(std::launch::async,
                                                  []
                                                  {
                                                      QBX_GetIpodPlayer()->LockListener();
                                                      QBX_GetIpodPlayer()->UnlockListener();
                                                  });
            outside = locked.wait_for(2s) == std::future_status::ready;
            called = true;
        }
        bool called = false;
        bool outside = false;
    };
    FakeService service;
    AnswerState(service);
    Ready();
    Waiting waiting;
    const Subscription listening = session->Listen("waiting", waiting);

    service.Emit("OnPlayStatusChanged", "(2,)");

    EXPECT_TRUE(RunLoopUntil([&] { return waiting.called; }));
    EXPECT_TRUE(waiting.outside);
}

TEST_F(SessionTest, ListenersMayEndThemselvesAndAddOthersInsideACallback)
{
    struct Once : IQBXIpodPlayerListener
    {
        void OnPlayStatusChanged(iPodPlayerPlayStatus) override
        {
            ++calls;
            then();
        }
        int calls = 0;
        std::function<void()> then = [] {};
    };
    FakeService service;
    AnswerState(service);
    Ready();
    Once first;
    Once second;
    Subscription other;
    Subscription once = session->Listen("first", first);
    first.then = [&]
    {
        once.Reset();
        other = session->Listen("second", second);
    };

    service.Emit("OnPlayStatusChanged", "(2,)");
    service.Emit("OnPlayStatusChanged", "(1,)");
    Settle(service);

    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
}

TEST_F(SessionTest, ASlowCallbackIsNamedInTheLog)
{
    FakeService service;
    AnswerState(service);
    Ready();
    const Subscription slow = session->OnState("slow screen", [](const StatePtr&, Fields) { g_usleep(8000); });

    RunLoopFor(20ms);

    const std::vector<std::string> lines = LogLines();
    EXPECT_THAT(lines, testing::Contains(HasSubstr("callback 'slow screen' took ")));
}
}  // namespace
}  // namespace test
