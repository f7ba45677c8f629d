#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>
#include <set>
#include <thread>

#include <ipodkit/core.h>

#include "kit/kit_test.h"
#include "kit/ticker.h"
#include "support/recording_listener.h"

namespace test
{
namespace
{
// Far below anything that could block (deadlines, locks, segment creation), but above the noise of a busy machine.
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

using ReadySessionTest = ReadyTest;

TEST_F(SessionTest, GoesFromAbsentToReady)
{
    AnsweringService service;
    Open();
    RecordPhases();

    Ready();

    EXPECT_THAT(Phases(), ElementsAre("Absent 0", "Connecting 1", "Ready 1"));
}

TEST_F(SessionTest, WaitsForAServiceStartedLater)
{
    Open();
    RecordPhases();
    RunLoopFor(50ms);

    AnsweringService service;
    Ready();

    EXPECT_EQ(Phases().back(), "Ready 1");
}

TEST_F(SessionTest, IsLostWithTheServiceAndReadyWithTheNext)
{
    auto service = std::make_unique<AnsweringService>();
    Ready();
    RecordPhases();
    RunLoopFor(1ms);

    service.reset();
    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().phase == Phase::Lost; }));
    AnsweringService next;
    Ready(2);

    EXPECT_THAT(Phases(), ElementsAre("Ready 1", "Lost 1", "Connecting 2", "Ready 2"));
}

TEST_F(SessionTest, ObtainsThePlayerOnceAndLeavesItsConnectionToTheApplication)
{
    for (std::uint32_t generation = 1; generation <= 3; ++generation)
    {
        AnsweringService service;
        Ready(generation);
    }

    EXPECT_EQ(CountLogLines("40 InitShareMemory: InitShareMemory()"), 1U);
    EXPECT_EQ(CountLogLines("40 InitInstance: InitInstance()"), 0U);
}

TEST_F(SessionTest, OnlyOneExistsAtATime)
{
    Open();

    const auto second = Session::Open();

    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().kind, ErrorKind::BadArgument);
}

TEST_F(SessionTest, OptionsThatAreOutOfRangeAreABadArgument)
{
    const auto with = [](auto member, std::chrono::milliseconds value)
    {
        SessionOptions changed;
        changed.*member = value;
        return changed;
    };
    const struct
    {
        SessionOptions options;
        const char* reason;
    } cases[] = {
        {with(&SessionOptions::settle, -1ms), "settle: expected at least 0 ms, got -1 ms"},
        {with(&SessionOptions::deadline, 0ms), "deadline: expected at least 1 ms, got 0 ms"},
        {with(&SessionOptions::deadline, -5ms), "deadline: expected at least 1 ms, got -5 ms"},
        {with(&SessionOptions::callbackBudget, -1ms), "callbackBudget: expected at least 0 ms, got -1 ms"},
    };
    for (const auto& wrong : cases)
    {
        const auto opened = Session::Open(wrong.options);
        EXPECT_EQ(KindOf(opened), ErrorKind::BadArgument);
        EXPECT_EQ(opened ? "" : opened.error().reason, wrong.reason);
    }
    EXPECT_TRUE(Session::Open(with(&SessionOptions::settle, 0ms)));
}

TEST_F(SessionTest, OptionsMayBeArbitrarilyLong)
{
    const auto ever = std::chrono::milliseconds::max();
    FakeService service;
    Open({nullptr, ever, ever, ever});
    int states = 0;
    const Subscription watching =
        session->OnState("watch", [&states](const StatePtr&, Fields changed) { states += changed.Has(Field::Repeat); });
    Ready();
    const int before = states;

    service.Emit("OnIpodRepeatModeChange", "(byte 2,)");
    RunLoopFor(50ms);

    EXPECT_EQ(states, before);
    EXPECT_EQ(CountLogLines("over its budget"), 0U);
}

TEST_F(SessionTest, CallbacksThatThrowStopNothing)
{
    AnsweringService service;
    Session& opened = Open();
    int calls = 0;
    const auto broken = [&calls](const auto&...)
    {
        ++calls;
        throw std::runtime_error("broken");
    };
    const Subscription connection = opened.OnConnection("a connection", broken);
    const Subscription state = opened.OnState("a state", broken);
    const Subscription event = opened.OnEvent("an event", broken);
    int events = 0;
    const Subscription after = opened.OnEvent("another", [&events](const ipodkit::Event&) { ++events; });

    Ready();
    service.Emit("OnIpodRepeatModeChange", "(1,)");
    Settle(service);

    EXPECT_GE(calls, 5);
    EXPECT_EQ(events, 1);
    EXPECT_GE(CountLogLines("80 LogWarning: callback 'a connection' threw: broken"), 2U);
    EXPECT_GE(CountLogLines("80 LogWarning: callback 'a state' threw: broken"), 2U);
    EXPECT_EQ(CountLogLines("80 LogWarning: callback 'an event' threw: broken"), 1U);
}

TEST_F(ReadySessionTest, ASecondOneMayFollow)
{
    session.reset();

    Ready();
    service.Emit("OnPlayStatusChanged", "(2,)");

    EXPECT_TRUE(RunLoopUntil([&] { return session->State()->status == PlayStatus::Paused; }));
}

TEST_F(ReadySessionTest, ALaterOneMayLiveInAContextOfTheApplication)
{
    session.reset();
    GMainContext* const own = g_main_context_new();
    SessionOptions elsewhere;
    elsewhere.context = own;
    Open(elsewhere);
    const auto limit = std::chrono::steady_clock::now() + 5s;
    bool paused = false;
    const Subscription watching = session->OnState(
        "status", [&](const StatePtr& state, Fields) { paused = state->status == PlayStatus::Paused; });

    while (session->Connection().phase != Phase::Ready && std::chrono::steady_clock::now() < limit)
        g_main_context_iteration(own, FALSE);
    service.Emit("OnPlayStatusChanged", "(2,)");
    while (!paused && std::chrono::steady_clock::now() < limit) g_main_context_iteration(own, FALSE);

    EXPECT_TRUE(paused);
    session.reset();
    while (g_main_context_iteration(own, FALSE)) continue;
    g_main_context_unref(own);
}

TEST_F(SessionTest, AHangingServiceDoesNotBlockTheLoop)
{
    FakeService service;
    HoldState(service);
    options.deadline = 100ms;
    Open(options);
    RunLoopFor(20ms);
    const Ticker ticker;

    RunLoopFor(1s);

    EXPECT_EQ(session->Connection().phase, Phase::Connecting);
    EXPECT_EQ(session->Connection().error->kind, ErrorKind::TimedOut);
    EXPECT_LE(ticker.Longest(), kNotBlocked);
}

TEST_F(SessionTest, BecomesReadyWhenAHangingServiceWakesUp)
{
    FakeService service;
    HoldState(service);
    options.deadline = 100ms;
    Open(options);
    RunLoopFor(300ms);

    AnswerState(service);

    Ready();
    EXPECT_TRUE(RunLoopUntil([&] { return session->Connection().missing.Empty(); }));
    EXPECT_FALSE(session->Connection().error);
}

// As if a service is stopped after its first reply.
TEST_F(SessionTest, IsReadyWithoutLateFieldsAndListsThem)
{
    AnsweringService service;
    service.Hold("GetCurrentMediaInfo");
    service.Hold("GetIpodName");
    options.deadline = 500ms;
    Ready();

    EXPECT_EQ(session->State()->missing, Field::Track | Field::DeviceName);
    EXPECT_EQ(session->Connection().error->kind, ErrorKind::TimedOut);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("track, device name"));
    EXPECT_EQ(session->State()->queueSize, 3);

    AnswerState(service);

    ASSERT_TRUE(RunLoopUntil([&] { return session->State()->missing.Empty(); }));
    EXPECT_FALSE(session->State()->error);
    EXPECT_EQ(session->State()->track->title, "Song");
    EXPECT_EQ(session->State()->deviceName, "Phone");
}

TEST_F(SessionTest, EventValuesStayKnownIfTheServiceRefusesToRepeatThem)
{
    AnsweringService service;
    service.On("GetShuffleMode",
               [&service](GVariant*)
               {
                   service.Emit("OnIpodShuffleModeChange", "(1,)");
                   return Reply::Error("com.example.Broken", "no");
               });

    Ready();

    EXPECT_EQ(session->State()->shuffle, Shuffle::Songs);
}

// Each unanswered request counts against the limit of the bus.
TEST_F(SessionTest, DoesNotFloodAHangingService)
{
    FakeService service;
    const std::size_t requests = HoldState(service);
    options.deadline = 1ms;
    Open(options);

    RunLoopFor(500ms);

    EXPECT_EQ(service.Calls().size(), requests);
}

TEST_F(SessionTest, StateAndConnectionAgreeInsideEveryCallback)
{
    Open();
    std::vector<std::string> differences;
    const auto compare = [&](Phase phase, bool failed)
    {
        const StatePtr state = session->State();
        if (phase != state->phase || failed != state->error.has_value() || phase != session->Connection().phase ||
            (phase == Phase::Ready && !state->track))
            differences.push_back(std::string(Name(phase)) + " beside " + Name(state->phase));
    };
    const Subscription steps = session->OnConnection(
        "steps", [&](const Connection& connection) { compare(connection.phase, connection.error.has_value()); });
    const Subscription states = session->OnState(
        "states", [&](const StatePtr& state, Fields) { compare(state->phase, state->error.has_value()); });
    for (std::uint32_t generation = 1; generation <= 3; ++generation)
    {
        AnsweringService service;
        Ready(generation);
    }
    bus.Stop();

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));
    EXPECT_THAT(differences, IsEmpty());
}

// The segments are static objects, which the exit destroys.
TEST_F(SessionTest, TheExitOfTheProcessWaitsForWorkOnTheSegments)
{
    const auto exitWhileAttaching = [this]
    {
        const AnsweringService service;
        QBXSharedSegment segment(boost::interprocess::open_or_create, kListSegmentName, 65536);
        std::promise<void> locked;
        const auto hold = [&locked]
        {
            locked.set_value();
            g_usleep(500000);
        };
        std::thread([&] { segment.atomic_func(hold); }).detach();
        locked.get_future().wait();
        Open();
        RunLoopFor(100ms);
        std::exit(0);
    };
    const auto begin = std::chrono::steady_clock::now();

    EXPECT_EXIT(exitWhileAttaching(), testing::ExitedWithCode(0), "");

    EXPECT_GE(std::chrono::steady_clock::now() - begin, 500ms);
}

// Waiting for the lock times out after ten seconds.
TEST_F(SessionTest, ASegmentLockedByADeadProcessIsAnErrorWithARemedy)
{
    QBXSharedSegment segment(boost::interprocess::open_or_create, kListSegmentName, 65536);
    const pid_t child = fork();
    if (child == 0)
    {
        auto die = [] { _exit(0); };
        segment.atomic_func(die);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    AnsweringService service;
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
    AnsweringService service;
    const QBXSharedSegment segment(boost::interprocess::open_or_create, kListSegmentName, 65536);
    if (geteuid() != 0 || seteuid(kNobody) != 0) GTEST_SKIP() << "only root can switch users";

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
    AnsweringService service;
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
    AnsweringService service;
    Open();
    const Ticker ticker;

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }, 10s));

    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoSharedMemory);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("remove /dev/shm/ListVectorSharedMemory"));
    EXPECT_LE(ticker.Longest(), kNotBlocked);

    shm_unlink(kListSegmentName);
    Ready();
}

// As between the two steps in which a service grows it.
TEST_F(SessionTest, AttachesASegmentShorterThanItsObject)
{
    QBXSharedSegment(boost::interprocess::open_or_create, kListSegmentName, 65536);
    ASSERT_EQ(truncate((std::string("/dev/shm/") + kListSegmentName).c_str(), 65536 + 4096), 0);
    AnsweringService service;
    Open();

    Ready();
}

// Probing the segment finds no error: only the core notices that its vectors cannot grow, and it does not retry.
TEST_F(SessionTest, AFullSegmentRequiresARestart)
{
    QBXSharedSegment segment(boost::interprocess::open_or_create, kBufferSegmentName, 65536);
    for (std::size_t size = 65536; size > 0; size /= 2)
        while (segment.allocate(size, std::nothrow) != nullptr) continue;
    AnsweringService service;
    Open();

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));

    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoSharedMemory);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("fix this and restart the application"));
    RecordPhases();
    shm_unlink(kBufferSegmentName);
    RunLoopFor(1500ms);
    EXPECT_THAT(Phases(), ElementsAre("Connecting 1")) << "the second attempt fails as the first did";
}

TEST_F(SessionTest, NeitherLosesNorDuplicatesEventsInAThousandRestarts)
{
    struct Amounts : IQBXIpodPlayerListener
    {
        void OnIpodPlayingListAmountChange(int amount) override { seen.push_back(amount); }
        std::vector<int> seen;
    };
    Amounts amounts;
    Open();
    const Subscription listening = Listen(*session, "amounts", amounts);
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

// The new process owns the name at once and emits without waiting for requests.
TEST_F(SessionTest, NeitherLosesNorDuplicatesEventsOfAReplacementService)
{
    std::vector<int> seen;
    std::vector<int> sent;
    Open();
    const Subscription watching = session->OnEvent("amounts",
                                                   [&seen](const ipodkit::Event& event)
                                                   {
                                                       const auto* const change = std::get_if<QueueSizeChanged>(&event);
                                                       if (change != nullptr) seen.push_back(change->size);
                                                   });
    auto service = std::make_unique<AnsweringService>();
    Ready(1);
    for (std::uint32_t generation = 2; generation <= 100; ++generation)
    {
        auto next = std::make_unique<AnsweringService>(FakeService::Takeover::Yes);
        for (int i = 0; i < 3; ++i)
        {
            sent.push_back(static_cast<int>(generation) * 3 + i);
            next->Emit("OnIpodPlayingListAmountChange", "(" + std::to_string(sent.back()) + ",)");
        }
        service = std::move(next);
        Ready(generation);
    }

    EXPECT_EQ(seen, sent);
}

TEST_F(ReadySessionTest, ASignalFromAnotherSenderIsIgnored)
{
    int seen = 0;
    const Subscription watching = session->OnEvent("count", [&seen](const ipodkit::Event&) { ++seen; });
    GDBusConnection* const other = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);

    g_dbus_connection_emit_signal(other, nullptr, "/com/zarn/linux/ipod", "com.zarn.linux.ipod", "OnPlayStatusChanged",
                                  g_variant_new("(y)", 2), nullptr);
    g_dbus_connection_flush_sync(other, nullptr, nullptr);
    Settle(service);

    EXPECT_EQ(seen, 0);
    g_object_unref(other);
}

TEST_F(SessionTest, CallbacksMayDestroyTheSessionAndNoneRunsAfterThat)
{
    AnsweringService service;
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

TEST_F(SessionTest, PublishesWithoutATimerDescriptor)
{
    AnsweringService service;
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none{0, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    Open();
    setrlimit(RLIMIT_NOFILE, &usual);
    Ready();

    service.Emit("OnPlayStatusChanged", "(2,)");

    EXPECT_TRUE(RunLoopUntil([&] { return session->State()->status == PlayStatus::Paused; }));
    service.Emit("OnPlayStatusChanged", "(1,)");
    EXPECT_TRUE(RunLoopUntil([&] { return session->State()->status == PlayStatus::Playing; }));
}

TEST_F(SessionTest, TheEndOfTheBusIsReported)
{
    auto service = std::make_unique<AnsweringService>();
    Ready();
    service.reset();

    bus.Stop();

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));
    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoBus);
    EXPECT_EQ(KindOf(Completed(session->Commands().Next())), ErrorKind::NoBus);
}

TEST_F(SessionTest, AReturningBusIsFoundAgain)
{
    auto service = std::make_unique<AnsweringService>();
    Ready();
    service.reset();
    bus.Stop();
    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));

    const PrivateBus next;
    AnsweringService again;

    Ready(2);
    EXPECT_FALSE(session->Connection().error);
    EXPECT_TRUE(Completed(session->Commands().DeviceCount()));
    again.Emit("OnPlayStatusChanged", "(2,)");
    EXPECT_TRUE(RunLoopUntil([&] { return session->State()->status == PlayStatus::Paused; }));
}

TEST_F(SessionTest, AServiceThatTheBusCannotStartIsAnErrorWithItsReason)
{
    options.activateService = true;
    Open(options);

    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().error.has_value(); }));

    EXPECT_EQ(session->Connection().phase, Phase::Absent);
    EXPECT_EQ(session->Connection().error->kind, ErrorKind::NoService);
    EXPECT_THAT(session->Connection().error->reason, HasSubstr("com.zarn.linux.ipod"));
    AnsweringService service;
    Ready();
}

// Each signal with a valid body, and the invalid bodies of services that violate the contract.
const std::pair<const char*, const char*> kSignals[] = {
    {"OnIpodDeviceStatusChange", "(0, true)"},
    {"OnPlayStatusChanged", "(77,)"},
    {"OnPlayProgressChange", "(-1, 2000)"},
    {"OnIpodRepeatModeChange", "(1,)"},
    {"OnIpodShuffleModeChange", "(255,)"},
    {"OnIpodPlayingTrackChange", "(7, <[byte 0x41, 0x42, 0]>)"},
    {"OnIpodPlayingTrackChange", "(7, <@ay []>)"},
    {"OnIpodPlayingTrackChange", "(7, <'text'>)"},
    {"OnIpodPlayingListAmountChange", "(-5,)"},
    {"OnIpodSourceValidStatusChange", "(true,)"},
    {"OnIpodArtworkChange", "(<[byte 0, 0, 0, 0, 3, 0, 0, 0, 44, 1]>,)"},
    {"OnCarplayDeviceDetectStatusChange", "(0, 'serial')"},
    {"OnIpodPhoneCallChange", "(<[byte 0x2A, 1, 0x61, 0x18, 2, 0x12, 1, 0x58]>,)"},
    {"OnIpodPhoneCallChange", "(<[byte 0x18, 99]>,)"},
    {"OnIpodPhoneCallChange", "(<@ay []>,)"},
    {"OnIpodPhoneCallChange", "(<[byte 0x2A, 0xFF, 0xFF]>,)"},
    {"OnIpodBatteryChange", "(<[byte 0x08, 1, 0x10, 80]>,)"},
    {"OnIpodLocationStatusChange", "(1,)"},
    {"OnIpodAppBundleNameChange", "('app',)"},
    {"OnIpodStartEapSession", "(1, 300)"},
    {"OnIpodReceiveEapData", "(44,)"},
    {"OnIpodStopEapSession", "(300,)"},
    {"OnCarlifeDeviceDetectStatusChange", "(0,)"},
    {"OnWirelessCarPlayUpdate", "(true, 'address')"},
    {"OnOOBPairingInfo", "('address', [(0x05,), (0x06,)])"},
};

TEST_F(ReadySessionTest, EverySignalIsAnEventAsInTheCore)
{
    shared.SetBytes("VecArtworkChangeBufferShareMemory", {'G', 'I', 'F'});
    shared.SetBytes("VecEapReadBufferShareMemory", {1, 2, 3});
    Journal core;
    Journal kit;
    RecordingListener coreListener(core, "app");
    RecordingListener kitListener(kit, "app");
    std::set<std::string> signals;
    std::set<std::size_t> kinds;
    ASSERT_TRUE(QBX_GetIpodPlayer()->InitInstance());
    QBX_GetIpodPlayer()->AddListener(&coreListener);
    const Subscription listening = Listen(*session, "listener", kitListener);
    const Subscription watching = session->OnEvent("events",
                                                   [&](const ipodkit::Event& event)
                                                   {
                                                       signals.insert(SignalName(event));
                                                       kinds.insert(event.index());
                                                   });

    std::set<std::string> sent;
    for (const auto& [signal, body] : kSignals)
    {
        service.Emit(signal, body);
        sent.insert(signal);
    }
    Settle(service);

    EXPECT_EQ(kit, core);
    EXPECT_EQ(signals, sent);
    EXPECT_EQ(kinds.size(), std::variant_size_v<ipodkit::Event>);
    QBX_GetIpodPlayer()->RemoveListener(&coreListener);
}

TEST_F(ReadySessionTest, ListenersGetEveryEventOutsideTheListenerLock)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    const Subscription listening = Listen(*session, "app", listener);

    service.Emit("OnPlayStatusChanged", "(2,)");
    service.Emit("OnIpodPlayingTrackChange", TrackEvent(7, "Other"));
    Emit("OnOOBPairingInfo", "('addr', [(0x01,), (0x02,)])");

    EXPECT_THAT(journal, ElementsAre("app.OnPlayStatusChanged(2)",
                                     R"(app.OnIpodPlayingTrackChange(7, "Other", "", "", "", 0, 0, 0, 0))",
                                     R"(app.OnOOBPairingInfo("addr", [01 02]))"));
}

TEST_F(ReadySessionTest, AListenerMayWaitForAThreadThatWantsTheListenerLock)
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
    Waiting waiting;
    const Subscription listening = Listen(*session, "waiting", waiting);

    service.Emit("OnPlayStatusChanged", "(2,)");

    EXPECT_TRUE(RunLoopUntil([&] { return waiting.called; }));
    EXPECT_TRUE(waiting.outside);
}

TEST_F(ReadySessionTest, ListenersMayRemoveThemselvesAndAddOthersInACallback)
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
    Once first;
    Once second;
    Subscription other;
    Subscription once = Listen(*session, "first", first);
    first.then = [&]
    {
        once.Reset();
        other = Listen(*session, "second", second);
    };

    service.Emit("OnPlayStatusChanged", "(2,)");
    Emit("OnPlayStatusChanged", "(1,)");

    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
}

TEST_F(ReadySessionTest, ASlowCallbackIsNamedInTheLog)
{
    const Subscription slow = session->OnState("slow screen", [](const StatePtr&, Fields) { g_usleep(8000); });

    RunLoopFor(20ms);

    const std::vector<std::string> lines = LogLines();
    EXPECT_THAT(lines, testing::Contains(HasSubstr("callback 'slow screen' took ")));
}
}  // namespace
}  // namespace test
