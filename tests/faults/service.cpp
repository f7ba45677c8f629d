// A service or a bus that dies or hangs.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <thread>

#include "desk.h"
#include "helper_process.h"

namespace faults
{
namespace
{
std::vector<std::string> Service()
{
    return HelperProcess::Own({"serve"});
}

double Percentile99(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() * 99 / 100];
}

// Seconds from the moment the service owns its name again until a call is answered. Without the main loop, the proxy
// would keep calling the closed connection.
double UntilAnswered(IQBXIpodPlayer& player)
{
    const auto start = Clock::now();
    test::RunLoopUntil([&] { return player.GetPlayStatus() == 77; });
    return SecondsSince(start);
}

// Seconds from the death of the service to the end of the pending call.
double KillInMidCall(IQBXIpodPlayer& player, HelperProcess& service)
{
    Clock::time_point died;
    std::thread killer(
        [&]
        {
            service.WaitFor("held");
            service.Kill();
            died = Clock::now();
        });
    player.GetDeviceAmount();
    const auto returned = Clock::now();
    killer.join();
    return std::max(0.0, std::chrono::duration<double>(returned - died).count());
}

// Duration in seconds of a call without a service.
double CallNobody(IQBXIpodPlayer& player)
{
    const auto start = Clock::now();
    Expect(player.GetShuffleMode() == 255, "failure value of GetShuffleMode");
    return SecondsSince(start);
}

void KilledInMidCall(const Arguments& arguments)
{
    const test::PrivateBus bus;
    IQBXIpodPlayer* player = nullptr;
    std::vector<double> held;
    std::vector<double> afterwards;
    for (int i = std::stoi(arguments.at(0)); i > 0; --i)
    {
        HelperProcess service(Service());
        service.WaitFor("ready");
        if (player == nullptr) player = &Connected();
        UntilAnswered(*player);
        held.push_back(KillInMidCall(*player, service));
        afterwards.push_back(CallNobody(*player));
    }
    Figure("calls_ended", static_cast<double>(held.size()));
    Figure("held_p99_ms", 1000 * Percentile99(held));
    Figure("afterwards_p99_ms", 1000 * Percentile99(afterwards));
    Expect(Percentile99(held) <= 0.005, "a call ends at most 5 ms after the service's death");
    Expect(Percentile99(afterwards) <= 0.005, "a call that nobody can answer ends within 5 ms");
    HelperProcess service(Service());
    service.WaitFor("ready");
    UntilAnswered(*player);
    ExpectAlive(*player);
}

void Restarted(const Arguments& arguments)
{
    const int restarts = std::stoi(arguments.at(0));
    const int events = std::stoi(arguments.at(1));
    const test::PrivateBus bus;
    IQBXIpodPlayer* player = nullptr;
    int survived = 0;
    long received = 0;
    double worst = 0;
    double inUse = 0;
    for (int i = 0; i < restarts; ++i)
    {
        if (i == restarts / 2) inUse = static_cast<double>(BytesInUse());
        HelperProcess service(Service());
        service.WaitFor("ready");
        if (player == nullptr) player = &Connected();
        worst = std::max(worst, UntilAnswered(*player));
        Counter counter;
        player->AddListener(&counter);
        service.Send("emit " + std::to_string(events));
        test::RunLoopUntil([&] { return counter.received >= events; });
        player->RemoveListener(&counter);
        received += counter.received;
        if (counter.received == events && counter.outOfTurn == 0) ++survived;
    }
    Figure("survived", survived);
    Figure("kept_by_a_restart", (static_cast<double>(BytesInUse()) - inUse) / (restarts - restarts / 2));
    Figure("events", static_cast<double>(received));
    Figure("worst_recovery_ms", 1000 * worst);
    Expect(survived == restarts, "after every restart each event arrives once and in order");
    Expect(worst <= 0.1, "calls are good again within 100 ms");
    HelperProcess service(Service());
    service.WaitFor("ready");
    UntilAnswered(*player);
    ExpectAlive(*player);
}

void ExpectLimitOfTheBus(const std::function<int()>& command, int expected)
{
    const auto start = Clock::now();
    Expect(command() == expected, "the failure value comes back");
    const double seconds = SecondsSince(start);
    Figure("seconds", seconds);
    Expect(seconds > 24 && seconds < 26.5, "25 s");
}

void Stopped(const Arguments&)
{
    const test::PrivateBus bus;
    HelperProcess service(Service());
    service.WaitFor("ready");
    IQBXIpodPlayer& player = Connected();
    service.Stop();
    ExpectLimitOfTheBus([&] { return player.GetShuffleMode(); }, 255);
    service.Signal(SIGCONT);
    ExpectAlive(player);
}

void NoReply(const Arguments&)
{
    Desk desk;
    desk.service.Hold("GetShuffleMode");
    ExpectLimitOfTheBus([&] { return desk.player.GetShuffleMode(); }, 255);
    desk.ExpectAlive();
}

void KillTheBus()
{
    GDBusConnection* const session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    GVariant* const reply =
        g_dbus_connection_call_sync(session, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "GetConnectionUnixProcessID", g_variant_new("(s)", "org.freedesktop.DBus"),
                                    G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    guint32 pid = 0;
    g_variant_get(reply, "(u)", &pid);
    g_variant_unref(reply);
    kill(static_cast<pid_t>(pid), SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    g_object_unref(session);
}

void BusKilledWhileTheLoopRuns(const Arguments&)
{
    Desk desk;
    KillTheBus();
    test::RunLoopFor(std::chrono::seconds(2));
    Expect(false, "the end of the bus terminates the process");
}

// Without a running loop the process survives; calls fail at once.
void BusKilledWithoutALoop(const Arguments&)
{
    Desk desk;
    KillTheBus();
    const auto start = Clock::now();
    Expect(desk.player.GetShuffleMode() == 255, "failure value of GetShuffleMode");
    Figure("seconds", SecondsSince(start));
    Say("survived");
    std::fflush(stdout);
    _exit(Verdict());
}

void OnBusClosed(GDBusConnection*, gboolean, GError*, gpointer closed)
{
    *static_cast<bool*>(closed) = true;
}

// How an application can survive; the documentation shows these three lines.
void BusKilledAndSurvived(const Arguments&)
{
    Desk desk;
    bool busClosed = false;
    GDBusConnection* const session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    g_dbus_connection_set_exit_on_close(session, FALSE);
    g_signal_connect(session, "closed", G_CALLBACK(OnBusClosed), &busClosed);
    KillTheBus();
    test::RunLoopFor(std::chrono::milliseconds(200));
    Expect(busClosed, "the application is notified");
    Expect(desk.player.GetShuffleMode() == 255, "failure value of GetShuffleMode");
    Say("survived");
    std::fflush(stdout);
    _exit(Verdict());
}

void WriteServiceFile(const std::string& folder)
{
    char self[4096] = {};
    Expect(readlink("/proc/self/exe", self, sizeof(self) - 1) > 0, "the own path");
    std::ofstream(folder + "/com.zarn.linux.ipod.service") << "[D-BUS Service]\nName=com.zarn.linux.ipod\nExec=" << self
                                                           << " serve-at-the-second-try " << folder << "/mark\n";
}

// The contract requires this loop: after a failed first attempt, success does not end it.
void ActivatedServiceThatFailsFirst(const Arguments&)
{
    char folder[] = "/dev/shm/services-XXXXXX";
    Expect(mkdtemp(folder) != nullptr, "a folder");
    WriteServiceFile(folder);
    GTestDBus* const daemon = g_test_dbus_new(G_TEST_DBUS_NONE);
    g_test_dbus_add_service_dir(daemon, folder);
    g_test_dbus_up(daemon);
    alarm(4);
    QBX_GetIpodPlayer()->InitInstance();
    Expect(false, "InitInstance() does not come back");
}
}  // namespace

std::vector<Case> ServiceCases()
{
    return {{"killed-in-mid-call", KilledInMidCall},
            {"restarted", Restarted},
            {"stopped", Stopped},
            {"no-reply", NoReply},
            {"bus-killed-while-the-loop-runs", BusKilledWhileTheLoopRuns},
            {"bus-killed-without-a-loop", BusKilledWithoutALoop},
            {"bus-killed-and-survived", BusKilledAndSurvived},
            {"activated-service-that-fails-first", ActivatedServiceThatFailsFirst}};
}
}  // namespace faults
