// Compares asynchronous commands of ipodkit with bare calls of the generated binding: one call at a time, and
// 1,000 at a time, in random order. Intended to run on one CPU.
#include <ipod_dbus.h>

#include "kit/figures/figures.h"
#include "kit/kit_test.h"

namespace test
{
namespace
{
// GTestDBus reads the variable when it starts the fixture's bus.
struct BusForManyReplies
{
    BusForManyReplies() { g_setenv("G_TEST_DBUS_DAEMON", IPODKIT_BUS_DAEMON, TRUE); }
};

class CallFigures : BusForManyReplies, public KitTest
{
};

void Until(const bool& flag)
{
    while (!flag) g_main_context_iteration(nullptr, TRUE);
}

void Finish(GObject* source, GAsyncResult* result, gpointer done)
{
    gboolean moved = FALSE;
    com_zarn_linux_ipod_call_next_finish(COM_ZARN_LINUX_IPOD(source), &moved, result, nullptr);
    *static_cast<bool*>(done) = true;
}

double TimeBare(ComZarnLinuxIpod* proxy)
{
    bool done = false;
    const auto start = Clock::now();
    com_zarn_linux_ipod_call_next(proxy, nullptr, Finish, &done);
    Until(done);
    return Microseconds(Clock::now() - start);
}

double TimeKit(const Commands& commands)
{
    bool done = false;
    const auto start = Clock::now();
    commands.Next().Start([&done](const Result<void>&) { done = true; });
    Until(done);
    return Microseconds(Clock::now() - start);
}

constexpr int kInFlight = 1000;

void FinishOne(GObject* source, GAsyncResult* result, gpointer left)
{
    gboolean moved = FALSE;
    com_zarn_linux_ipod_call_next_finish(COM_ZARN_LINUX_IPOD(source), &moved, result, nullptr);
    *static_cast<int*>(left) -= moved;
}

double TimeBareInFlight(ComZarnLinuxIpod* proxy)
{
    int left = kInFlight;
    const auto start = Clock::now();
    for (int i = 0; i < kInFlight; ++i) com_zarn_linux_ipod_call_next(proxy, nullptr, FinishOne, &left);
    EXPECT_TRUE(RunLoopUntil([&left] { return left == 0; }));
    return Microseconds(Clock::now() - start);
}

double TimeKitInFlight(const Commands& commands)
{
    int left = kInFlight;
    const auto start = Clock::now();
    for (int i = 0; i < kInFlight; ++i)
        commands.Next().Start([&left](const Result<void>& done) { left -= done ? 1 : 0; });
    EXPECT_TRUE(RunLoopUntil([&left] { return left == 0; }));
    return Microseconds(Clock::now() - start);
}

TEST_F(CallFigures, AsynchronousCommand)
{
    FakeService service;
    AnswerState(service);
    service.Answer("Next", "(true,)");
    service.KeepNoCalls();
    const Commands commands = Ready().Commands();
    ComZarnLinuxIpod* const proxy =
        com_zarn_linux_ipod_proxy_new_for_bus_sync(G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES,
                                                   "com.zarn.linux.ipod", "/com/zarn/linux/ipod", nullptr, nullptr);
    Samples bare;
    Samples again;
    Samples kit;
    InRandomOrder(
        Rounds(4000), [&] { kit.push_back(TimeKit(commands)); }, [&] { bare.push_back(TimeBare(proxy)); },
        [&] { again.push_back(TimeBare(proxy)); });
    Print("call_bare", Quantile(bare, 0.5));
    Print("call_kit", Quantile(kit, 0.5));
    Print("call_control", Quantile(again, 0.5) / Quantile(bare, 0.5));
    Print("call_ratio", Quantile(kit, 0.5) / Quantile(bare, 0.5));
    Samples bareMany;
    Samples againMany;
    Samples kitMany;
    InRandomOrder(
        Rounds(20), [&] { kitMany.push_back(TimeKitInFlight(commands)); },
        [&] { bareMany.push_back(TimeBareInFlight(proxy)); }, [&] { againMany.push_back(TimeBareInFlight(proxy)); });
    Print("calls_control", Quantile(againMany, 0.5) / Quantile(bareMany, 0.5));
    Print("calls_ratio", Quantile(kitMany, 0.5) / Quantile(bareMany, 0.5));
    g_object_unref(proxy);
}
}  // namespace
}  // namespace test
