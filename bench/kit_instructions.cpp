// Repeats an event or a request of ipodkit, and its counterpart with GDBus alone, for counting instructions. The
// difference between two runs of different length is the cost of the operation.
#include <ipodkit/session.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "protocol.h"
#include "startup/bare_client.h"

namespace
{
using namespace bench;
using Operation = void (*)(int times);

GDBusConnection* Connection()
{
    static GDBusConnection* const connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    return connection;
}

void RunUntil(const std::function<bool()>& done)
{
    while (!done()) g_main_context_iteration(nullptr, TRUE);
}

std::unique_ptr<ipodkit::Session> ReadySession()
{
    ipodkit::SessionOptions options;
    options.settle = std::chrono::milliseconds(0);
    auto session = *ipodkit::Session::Open(options);
    RunUntil([&session] { return session->Connection().phase == ipodkit::Phase::Ready; });
    return session;
}

// The status differs from event to event, so each changes the state.
void RequestEvents(int times)
{
    g_dbus_connection_call(Connection(), kBusName, kBenchPath, kBenchInterface, "Emit", g_variant_new("(i)", times),
                           nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
}

void EventsBare(int times)
{
    BareClient client;
    client.Open();
    RunUntil([&client] { return client.Ready(); });
    RequestEvents(times);
    RunUntil([&client, times] { return client.Events() == times; });
}

void EventsKit(int times)
{
    const auto session = ReadySession();
    int changes = -1;  // the first call reports the present state
    const ipodkit::Subscription counting = session->OnState(
        "counting", [&changes](const ipodkit::StatePtr&, ipodkit::Fields) { ++changes; }, ipodkit::Field::Status);
    RunUntil([&changes] { return changes == 0; });
    RequestEvents(times);
    RunUntil([&changes, times] { return changes == times; });
}

void OnReply(GObject* connection, GAsyncResult* result, gpointer done)
{
    GVariant* const reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr);
    if (reply == nullptr) std::abort();
    g_variant_unref(reply);
    *static_cast<bool*>(done) = true;
}

void RequestsBare(int times)
{
    BareClient client;
    client.Open();
    RunUntil([&client] { return client.Ready(); });
    for (int i = 0; i < times; ++i)
    {
        bool done = false;
        g_dbus_connection_call(Connection(), kBusName, kObjectPath, kBusName, "Pause", nullptr, G_VARIANT_TYPE("(b)"),
                               G_DBUS_CALL_FLAGS_NONE, -1, nullptr, OnReply, &done);
        RunUntil([&done] { return done; });
    }
}

void RequestsKit(int times)
{
    const auto session = ReadySession();
    const ipodkit::Commands commands = session->Commands();
    for (int i = 0; i < times; ++i)
    {
        bool done = false;
        commands.Pause().Start([&done](const ipodkit::Result<void>& result) { done = result.has_value(); });
        RunUntil([&done] { return done; });
    }
}

const std::map<std::string, Operation> kOperations = {
    {"event-bare", EventsBare}, {"event-kit", EventsKit}, {"request-bare", RequestsBare}, {"request-kit", RequestsKit}};
}  // namespace

int main(int argc, char** argv)
{
    const auto found = kOperations.find(argc == 3 ? argv[1] : "");
    if (found == kOperations.end() || std::atoi(argv[2]) < 1)
    {
        std::fprintf(stderr, "usage: bench_kit_instructions OPERATION TIMES, with one of these operations:\n");
        for (const auto& known : kOperations) std::fprintf(stderr, "  %s\n", known.first.c_str());
        return 2;
    }
    found->second(std::atoi(argv[2]));
}
