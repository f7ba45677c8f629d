// How fast a session follows the service, and how briefly it blocks the loop while the service hangs.
#include <ipodkit/core.h>
#include "kit/figures/figures.h"
#include "kit/kit_test.h"
#include "kit/ticker.h"

namespace test
{
namespace
{
using SessionFigures = KitTest;

struct Heard : IQBXIpodPlayerListener
{
    void OnIpodPlayingListAmountChange(int) override { at = Clock::now(); }
    Clock::time_point at;
};

// From the core's delivery of an event to the subscriber, minus the settle time.
TEST_F(SessionFigures, SettledChange)
{
    FakeService service;
    AnswerState(service);
    options.settle = 5ms;
    Ready();
    Heard heard;
    Samples late;
    const Subscription listening = Listen(*session, "heard", heard);
    const auto note = [&](const StatePtr&, Fields changed)
    {
        if (changed == Fields(Field::QueueSize)) late.push_back(Microseconds(Clock::now() - heard.at - options.settle));
    };
    const Subscription watching = session->OnState("delivered", note);
    for (int i = 0; i < Rounds(500); ++i)
    {
        const std::size_t before = late.size();
        service.Emit("OnIpodPlayingListAmountChange", "(" + std::to_string(1000 + i) + ",)");
        while (late.size() == before) g_main_context_iteration(nullptr, TRUE);
    }
    Print("change_median", Quantile(late, 0.5));
    Print("change_99", Quantile(late, 0.99));
}

// The first session of the process attaches the segments and connects the core.
TEST_F(SessionFigures, Start)
{
    FakeService service;
    AnswerState(service);
    const auto start = Clock::now();
    Open();
    while (session->Connection().phase != Phase::Ready) g_main_context_iteration(nullptr, TRUE);
    Print("first_ready", Microseconds(Clock::now() - start) / 1000);
}

TEST_F(SessionFigures, Restarts)
{
    Open();
    Samples ready;
    for (std::uint32_t generation = 1; generation <= 100; ++generation)
    {
        FakeService service;
        AnswerState(service);
        const auto start = Clock::now();
        while (session->Connection().phase != Phase::Ready || session->Connection().generation != generation)
            g_main_context_iteration(nullptr, TRUE);
        ready.push_back(Microseconds(Clock::now() - start) / 1000);
    }
    Print("ready_again", Quantile(ready, 0.5));
}

// The longest delay of a ticking source, and the longest main-loop iteration.
class Loop
{
public:
    void PrintAs(const std::string& name) const
    {
        Print(("tick_" + name).c_str(), Microseconds(m_ticker.Longest()) / 1000);
        Print(("turn_" + name).c_str(), Microseconds(m_turns.Longest()) / 1000);
    }

private:
    Turns m_turns;
    Ticker m_ticker;
};

// The baseline: an idle loop on this machine.
TEST_F(SessionFigures, LoopAlone)
{
    const Loop loop;
    RunLoopFor(3s);
    loop.PrintAs("alone");
}

TEST_F(SessionFigures, LoopWhileConnecting)
{
    FakeService service;
    AnswerState(service);
    const Loop loop;
    Ready();
    loop.PrintAs("connecting");
}

TEST_F(SessionFigures, LoopWhileTheServiceHangsFromTheStart)
{
    FakeService service;
    HoldState(service);
    options.deadline = 500ms;
    Open(options);
    const Loop loop;
    RunLoopFor(3s);
    loop.PrintAs("hung_first");
    EXPECT_EQ(session->Connection().phase, Phase::Connecting);
}

// The service answers the ping but nothing after it.
TEST_F(SessionFigures, LoopWhileTheServiceHangsAfterThePing)
{
    FakeService service;
    service.Answer("GetPlayStatus", "(1,)");
    for (const char* method : {"GetCurrentMediaInfo", "GetPlayingTrackIdx", "GetPlayPosition", "GetShuffleMode"})
        service.Hold(method);
    options.deadline = 500ms;
    Open(options);
    const Loop loop;
    RunLoopFor(3s);
    loop.PrintAs("hung_reading");
}

TEST_F(SessionFigures, LoopWhileTheServiceHangsLater)
{
    FakeService service;
    AnswerState(service);
    options.deadline = 500ms;
    Ready();
    service.Hold("Next");
    const Commands commands = session->Commands();
    int completed = 0;
    const Loop loop;
    for (int i = 0; i < 30; ++i)
    {
        commands.Next().Start([&completed](const Result<void>& result) { completed += result ? 100 : 1; });
        RunLoopFor(100ms);
    }
    RunLoopUntil([&] { return completed == 30; });
    loop.PrintAs("hung_later");
    EXPECT_EQ(completed, 30);
}
}  // namespace
}  // namespace test
