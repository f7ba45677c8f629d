// Measures what the companion promises and prints it. Run by hand, on a machine that is otherwise idle:
//
//     IPODKIT_ROUNDS=5000 ipodkit_figures
#include <ipod_dbus.h>
#include <ipodkit/jump_index.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "kit/kit_test.h"
#include "kit/ticker.h"

namespace test
{
namespace
{
using Clock = std::chrono::steady_clock;
using Samples = std::vector<double>;

double Microseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::micro>(duration).count();
}

double Quantile(Samples samples, double which)
{
    std::sort(samples.begin(), samples.end());
    return samples[static_cast<std::size_t>(which * static_cast<double>(samples.size() - 1))];
}

void Print(const char* what, const Samples& samples)
{
    std::printf("%-44s median %8.1f us   90%% %8.1f us   99%% %8.1f us   (%zu)\n", what, Quantile(samples, 0.5),
                Quantile(samples, 0.9), Quantile(samples, 0.99), samples.size());
}

bool Until(const bool& flag)
{
    while (!flag) g_main_context_iteration(nullptr, TRUE);
    return true;
}

std::unique_ptr<Session> ReadySession(const SessionOptions& options)
{
    auto session = std::move(*Session::Open(options));
    RunLoopUntil([&] { return session->Connection().phase == Phase::Ready; });
    return session;
}

// One call at a time, the two kinds in random order.
void AsynchronousCalls(Session& session, int rounds)
{
    ComZarnLinuxIpod* const proxy =
        com_zarn_linux_ipod_proxy_new_for_bus_sync(G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES,
                                                   "com.zarn.linux.ipod", "/com/zarn/linux/ipod", nullptr, nullptr);
    const Commands commands = session.Commands();
    Samples bare;
    Samples kit;
    std::mt19937 engine(1);
    const auto finish = [](GObject* source, GAsyncResult* result, gpointer flag)
    {
        gboolean moved = FALSE;
        com_zarn_linux_ipod_call_next_finish(COM_ZARN_LINUX_IPOD(source), &moved, result, nullptr);
        *static_cast<bool*>(flag) = true;
    };
    for (int i = 0; i < 2 * rounds; ++i)
    {
        const bool useKit = engine() % 2 == 0;
        bool done = false;
        const auto start = Clock::now();
        if (useKit)
            commands.Next().Start([&done](Result<void>) { done = true; });
        else
            com_zarn_linux_ipod_call_next(proxy, nullptr, finish, &done);
        Until(done);
        (useKit ? kit : bare).push_back(Microseconds(Clock::now() - start));
    }
    Print("asynchronous call, generated binding", bare);
    Print("asynchronous call, companion", kit);
    std::printf("%-44s median %8.3f\n", "ratio", Quantile(kit, 0.5) / Quantile(bare, 0.5));
    g_object_unref(proxy);
}

// From the core's delivery of an event to the subscriber, less the settle time.
void SettledChanges(Session& session, FakeService& service, int rounds, std::chrono::milliseconds settle)
{
    struct Heard : IQBXIpodPlayerListener
    {
        void OnIpodPlayingListAmountChange(int) override { at = Clock::now(); }
        Clock::time_point at;
    };
    Heard heard;
    bool delivered = false;
    Samples late;
    const Subscription listening = session.Listen("heard", heard);
    const Subscription watching = session.OnState("delivered",
                                                  [&](const StatePtr&, Fields changed)
                                                  {
                                                      if (!changed.Has(Field::QueueSize) || changed == Fields::All())
                                                          return;
                                                      late.push_back(Microseconds(Clock::now() - heard.at - settle));
                                                      delivered = true;
                                                  });
    for (int i = 0; i < rounds; ++i)
    {
        delivered = false;
        service.Emit("OnIpodPlayingListAmountChange", "(" + std::to_string(1000 + i) + ",)");
        Until(delivered);
    }
    Print("change delivered after the settle time", late);
}

void Restarts(Session& session, int count)
{
    Samples ready;
    for (int i = 0; i < count; ++i)
    {
        const std::uint32_t before = session.Connection().generation;
        FakeService service;
        AnswerState(service);
        const auto start = Clock::now();
        RunLoopUntil(
            [&] { return session.Connection().phase == Phase::Ready && session.Connection().generation > before; });
        ready.push_back(Microseconds(Clock::now() - start));
    }
    Print("from the service's appearance to Ready", ready);
}

void Hanging(Session& session)
{
    FakeService service;
    service.Hold("GetPlayStatus");
    const Ticker ticker;
    RunLoopFor(std::chrono::seconds(3));
    std::printf("%-44s longest %7.1f us   (%d ticks, phase %s)\n", "loop while the service hangs",
                Microseconds(ticker.Longest()), ticker.Count(), Name(session.Connection().phase));
}

// What the machine does to a loop that has nothing to do.
void Idle()
{
    const Ticker ticker;
    RunLoopFor(std::chrono::seconds(3));
    std::printf("%-44s longest %7.1f us   (%d ticks)\n", "loop without service, for comparison",
                Microseconds(ticker.Longest()), ticker.Count());
}

std::vector<std::string> ManyNames(int count)
{
    std::mt19937 engine(1);
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i)
    {
        std::string name = i % 3 == 0 ? "feat. Jay " + std::to_string(i) + " " : "";
        for (auto length = 2 + engine() % 5; length > 0; --length)
        {
            const auto character = 0x4E00 + engine() % 8000;
            name += {static_cast<char>(0xE0 | character >> 12), static_cast<char>(0x80 | (character >> 6 & 63)),
                     static_cast<char>(0x80 | (character & 63))};
        }
        names.push_back(name);
    }
    return names;
}

void Index()
{
    const std::vector<std::string> names = ManyNames(50000);
    const std::size_t before = mallinfo2().uordblks;
    const auto start = Clock::now();
    const auto index = JumpIndex::Build(names);
    std::printf("%-44s %8.0f ms   %5.1f MB\n", "index of 50,000 names", Microseconds(Clock::now() - start) / 1000,
                static_cast<double>(mallinfo2().uordblks - before) / 1e6);
    Samples searches;
    for (const char* query : {"z", "zj", "zjl", "j", "jay", "feat", "s", "shi", "yi", "xyz", "aaaaaaaa", "zhoujielun"})
        for (int i = 0; i < 10; ++i)
        {
            const auto from = Clock::now();
            (void)index->Search(query);
            searches.push_back(Microseconds(Clock::now() - from));
        }
    Print("search in 50,000 names", searches);
    std::printf("%-44s %8.1f us\n", "the slowest search", Quantile(searches, 1.0));
}

void Measure(int rounds)
{
    const PrivateBus bus;
    SessionOptions options;
    options.deadline = 500ms;
    options.settle = 5ms;
    auto service = std::make_unique<FakeService>();
    AnswerState(*service);
    service->Answer("Next", "(true,)");
    const auto session = ReadySession(options);
    AsynchronousCalls(*session, rounds);
    SettledChanges(*session, *service, rounds / 10, options.settle);
    service.reset();
    Restarts(*session, 100);
    Hanging(*session);
    Idle();
    Index();
}

TEST(KitFigures, PrintsWhatItMeasures)
{
    const char* const rounds = std::getenv("IPODKIT_ROUNDS");
    Measure(rounds == nullptr ? 5000 : std::max(std::atoi(rounds), 10));
}
}  // namespace
}  // namespace test
