#include "session/bus_daemon.h"

#include <chrono>

#include "session/library_log.h"

namespace ctl
{
namespace
{
constexpr int kAnswerWithin = 10000;
}

GVariant* CallAndLog(GDBusConnection* bus, const Address& callee, const char* method, GVariant* arguments, int deadline,
                     GError** error)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point since = Clock::now();
    GVariant* const reply =
        g_dbus_connection_call_sync(bus, callee.name, callee.path, callee.name, method, arguments, nullptr,
                                    G_DBUS_CALL_FLAGS_NO_AUTO_START, deadline, nullptr, error);
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - since);
    LogCall(std::string(callee.name) + '.' + method, taken, *error == nullptr ? nullptr : (*error)->message);
    return reply;
}

GVariant* AskBus(GDBusConnection* bus, const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* const reply =
        CallAndLog(bus, {"org.freedesktop.DBus", "/org/freedesktop/DBus"}, method, arguments, kAnswerWithin, &error);
    g_clear_error(&error);
    return reply;
}
}  // namespace ctl
