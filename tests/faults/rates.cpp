// Excessive rates of calls and events, on one thread.
#include <gio/gio.h>

#include <algorithm>
#include <ctime>
#include <functional>

#include "desk.h"
#include "helper_process.h"

namespace faults
{
namespace
{
constexpr double kCalls = 3000;
constexpr double kEvents = 20000;
// On machines where GDBus alone barely reaches the rate, the library must reach this fraction of GDBus's rate.
constexpr double kShare = 2.0 / 3;

// Calls per second of this process's CPU time. Wall-clock time also depends on the daemon, the service, and other
// processes.
struct Rates
{
    double calls = 0;
    double events = 0;
};

double ProcessorSeconds()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

// The reported figure is calls per second of wall-clock time.
double MeasureCalls(const char* figure, int seconds, const std::function<bool()>& call)
{
    const auto start = Clock::now();
    const double usedBefore = ProcessorSeconds();
    int calls = 0;
    for (; SecondsSince(start) < seconds; ++calls)
        if (!call()) return Expect(false, "every call is answered"), 0;
    Figure(figure, calls / SecondsSince(start));
    return calls / (ProcessorSeconds() - usedBefore);
}

double MeasureEvents(int events, HelperProcess& service, const int& received)
{
    const double usedBefore = ProcessorSeconds();
    service.Send("emit " + std::to_string(events));
    const bool arrived = test::RunLoopUntil([&] { return received >= events; }, std::chrono::seconds(60));
    Expect(arrived, "every event arrives");
    return events / (ProcessorSeconds() - usedBefore);
}

// GDBus without a binding and without the library: the lower bound on this machine.
class BareProxy
{
public:
    BareProxy()
        : m_proxy(g_dbus_proxy_new_for_bus_sync(G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_NONE, nullptr, kName,
                                                "/com/zarn/linux/ipod", kName, nullptr, nullptr))
    {
        g_signal_connect(m_proxy, "g-signal", G_CALLBACK(OnSignal), &m_received);
    }
    ~BareProxy() { g_object_unref(m_proxy); }
    BareProxy(const BareProxy&) = delete;
    BareProxy& operator=(const BareProxy&) = delete;

    Rates Measure(int seconds, HelperProcess& service)
    {
        const double calls =
            MeasureCalls("calls_per_second_without_library", seconds, [this] { return PlayStatus() == 77; });
        return {calls, MeasureEvents(static_cast<int>(kEvents) * seconds, service, m_received)};
    }

private:
    static constexpr char kName[] = "com.zarn.linux.ipod";

    static void OnSignal(GDBusProxy*, const gchar*, const gchar*, GVariant* body, int* received)
    {
        int position = 0;
        g_variant_get(body, "(ii)", &position, nullptr);
        *received += position == *received;
    }

    int PlayStatus()
    {
        int status = 0;
        GVariant* const reply =
            g_dbus_proxy_call_sync(m_proxy, "GetPlayStatus", nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        if (reply == nullptr) return 0;
        g_variant_get(reply, "(i)", &status);
        g_variant_unref(reply);
        return status;
    }

    GDBusProxy* m_proxy;
    int m_received = 0;
};

// Sends events and checks that each arrives exactly once. Returns the rate at which the application received them.
double Flooded(IQBXIpodPlayer& player, HelperProcess& service, int events)
{
    Counter counter;
    player.AddListener(&counter);
    const auto start = Clock::now();
    const double rate = MeasureEvents(events, service, counter.received);
    Figure("events_per_second", events / SecondsSince(start));
    test::RunLoopFor(std::chrono::milliseconds(100));
    player.RemoveListener(&counter);
    Figure("events", counter.received);
    Expect(counter.received == events && counter.outOfTurn == 0, "each event arrives once and in order");
    return rate;
}

void Flood(const Arguments& arguments)
{
    const test::PrivateBus bus;
    HelperProcess service(HelperProcess::Own({"serve"}));
    service.WaitFor("ready");
    IQBXIpodPlayer& player = Connected();
    Flooded(player, service, std::stoi(arguments.at(0)));
    ExpectAlive(player);
}

void HeldRates(const Arguments& arguments)
{
    const int seconds = std::stoi(arguments.at(0));
    const test::PrivateBus bus;
    HelperProcess service(HelperProcess::Own({"serve"}));
    service.WaitFor("ready");
    const Rates bare = BareProxy().Measure(seconds, service);
    IQBXIpodPlayer& player = Connected();
    const double calls = MeasureCalls("calls_per_second", seconds, [&player] { return player.GetPlayStatus() == 77; });
    const double events = Flooded(player, service, static_cast<int>(kEvents) * seconds);
    Figure("calls_per_processor_second", calls);
    Figure("of_calls_without_library", calls / bare.calls);
    Figure("events_per_processor_second", events);
    Figure("of_events_without_library", events / bare.events);
    Expect(calls >= std::min(kCalls, kShare * bare.calls),
           "3,000 calls in a second of the application's processor time");
    Expect(events >= std::min(kEvents, kShare * bare.events),
           "20,000 events in a second of the application's processor time");
    ExpectAlive(player);
}
}  // namespace

std::vector<Case> RateCases()
{
    return {{"flood", Flood}, {"held-rates", HeldRates}};
}
}  // namespace faults
