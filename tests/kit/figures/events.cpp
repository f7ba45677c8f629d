// From an event on the bus to the subscriber of the state, against GDBus's bare delivery of the same signal: one at a
// time, in random order, by the processor time of the process and the allocations of the thread that runs the loop.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>

#include "kit/figures/figures.h"
#include "kit/kit_test.h"
#include "support/counted_malloc.h"

namespace test
{
namespace
{
using EventFigures = KitTest;

constexpr char kSignal[] = "OnPlayProgressChange";
constexpr char kPath[] = "/com/zarn/linux/ipod";
constexpr char kBareInterface[] = "com.example.Bare";

double ProcessorMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

constexpr char kFromService = 's';
constexpr char kBare = 'b';

// Emits on command, in a separate process, so that its work is not counted.
[[noreturn]] void RunSender(int commands)
{
    FakeService service;
    AnswerState(service);
    GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    char command = 0;
    for (int position = 1000; read(commands, &command, 1) == 1; ++position)
    {
        GVariant* const body = g_variant_new("(ii)", position, 200000);
        if (command == kFromService)
            service.EmitBody(kSignal, body);
        else
            g_dbus_connection_emit_signal(bus, nullptr, kPath, kBareInterface, kSignal, body, nullptr);
    }
    _exit(0);
}

class Sender
{
public:
    Sender()
    {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        m_process = fork();
        if (m_process == 0)
        {
            close(ends[1]);
            RunSender(ends[0]);
        }
        close(ends[0]);
        m_commands = ends[1];
    }

    ~Sender()
    {
        close(m_commands);
        waitpid(m_process, nullptr, 0);
    }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;

    void Emit(char command) const { EXPECT_EQ(write(m_commands, &command, 1), 1); }

private:
    pid_t m_process = -1;
    int m_commands = -1;
};

// GDBus alone: a subscription, and a callback that reads the arguments.
class BareListener
{
public:
    explicit BareListener(GDBusConnection* connection) : m_connection(connection)
    {
        g_dbus_connection_signal_subscribe(m_connection, nullptr, kBareInterface, nullptr, kPath, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, OnSignal, this, nullptr);
    }

    bool arrived = false;

private:
    static void OnSignal(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* body,
                         gpointer listener)
    {
        int position = 0;
        int duration = 0;
        g_variant_get(body, "(ii)", &position, &duration);
        static_cast<BareListener*>(listener)->arrived = true;
    }

    GDBusConnection* m_connection;
};

struct Cost
{
    Samples microseconds;
    Samples allocations;
};

void Measure(Cost& cost, const Sender& sender, char command, bool& arrived)
{
    arrived = false;
    const long before = AllocationsOfThisThread();
    const double start = ProcessorMicroseconds();
    sender.Emit(command);
    while (!arrived) g_main_context_iteration(nullptr, TRUE);
    cost.microseconds.push_back(ProcessorMicroseconds() - start);
    cost.allocations.push_back(static_cast<double>(AllocationsOfThisThread() - before));
}

void PrintCosts(const Cost& bare, const Cost& again, const Cost& kit)
{
    Print("event_bare", Quantile(bare.microseconds, 0.5));
    Print("event_kit", Quantile(kit.microseconds, 0.5));
    Print("event_control", Quantile(again.microseconds, 0.5) / Quantile(bare.microseconds, 0.5));
    Print("event_ratio", Quantile(kit.microseconds, 0.5) / Quantile(bare.microseconds, 0.5));
    Print("event_allocations", Quantile(kit.allocations, 0.5) - Quantile(bare.allocations, 0.5));
}

TEST_F(EventFigures, ToTheStateCallback)
{
    const Sender sender;
    options.settle = 0ms;
    Ready();
    GDBusConnection* const connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    BareListener listener(connection);
    bool published = false;
    const auto note = [&published](const StatePtr&, Fields changed) { published |= changed.Has(Field::Position); };
    const Subscription watching = session->OnState("delivered", note);
    RunLoopFor(50ms);
    Cost bare;
    Cost again;
    Cost kit;
    InRandomOrder(
        Rounds(3000), [&] { Measure(kit, sender, kFromService, published); },
        [&] { Measure(bare, sender, kBare, listener.arrived); },
        [&] { Measure(again, sender, kBare, listener.arrived); });
    PrintCosts(bare, again, kit);
    g_object_unref(connection);
}
}  // namespace
}  // namespace test
