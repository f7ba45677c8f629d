// Opens sessions repeatedly in one process: with ipodkit, and with GDBus alone, which sends the same requests.
#include <QBXLog.h>
#include <ipodkit/session.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bare_client.h"
#include "contest.h"

namespace
{
using namespace bench;
using Clock = std::chrono::steady_clock;

GDBusConnection* shared = nullptr;

// From Open() to readiness, without closing.
double TimeToReady(const std::function<void()>& open, const std::function<bool()>& ready)
{
    const auto start = Clock::now();
    open();
    while (!ready()) g_main_context_iteration(nullptr, TRUE);
    const auto cost = std::chrono::duration<double, std::nano>(Clock::now() - start);
    return cost.count();
}

// Lets this process and the bus finish the work that closing a session causes, so that it counts for neither variant.
void Settle()
{
    while (g_main_context_iteration(nullptr, FALSE)) continue;
    GVariant* const answer =
        g_dbus_connection_call_sync(shared, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId", nullptr,
                                    nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (answer == nullptr) std::exit(1);
    g_variant_unref(answer);
}

double MeasureBare()
{
    double cost = 0;
    {
        BareClient client;
        cost = TimeToReady([&client] { client.Open(); }, [&client] { return client.Ready(); });
    }
    Settle();
    return cost;
}

double MeasureKit()
{
    double cost = 0;
    {
        std::unique_ptr<ipodkit::Session> session;
        cost = TimeToReady([&session] { session = *ipodkit::Session::Open(); },
                           [&session] { return session->Connection().phase == ipodkit::Phase::Ready; });
    }
    Settle();
    return cost;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2 || std::atoi(argv[1]) < 1)
    {
        std::fprintf(stderr, "usage: bench_ready ROUNDS\n");
        return 2;
    }
    QBX_LogInit("ERROR:/dev/null");
    shared = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (shared == nullptr) return 1;
    Run({"session ready", std::atoi(argv[1]), {{"bare", MeasureBare}, {"kit", MeasureKit}}});
}
