#include "session/bus.h"

#include <QBXLog.h>

#include <chrono>
#include <cstring>
#include <string>

#include "output/failure.h"
#include "session/session.h"

namespace ctl
{
namespace
{
constexpr int kAnswerWithin = 10000;

// An object whose interface has the same name as its bus name.
struct Address
{
    const char* name;
    const char* path;
};
constexpr Address kBusDaemon{"org.freedesktop.DBus", "/org/freedesktop/DBus"};
constexpr Address kSimulator{"com.zarn.linux.ipod.Simulator", "/com/zarn/linux/ipod/simulator"};

void LogCall(const std::string& call, std::chrono::microseconds taken, const char* reason)
{
    constexpr int kDebug = 20;
    if (liblog_category == nullptr) return;
    zlog(liblog_category, "ipodctl", std::strlen("ipodctl"), __func__, std::strlen(__func__), __LINE__, kDebug,
         "%s() %s %.1f ms%s%s", call.c_str(), reason == nullptr ? "took" : "failed after",
         static_cast<double>(taken.count()) / 1000, reason == nullptr ? "" : ": ", reason == nullptr ? "" : reason);
}

VariantPtr CallAndLog(GDBusConnection* bus, const Address& callee, const char* method, GVariant* arguments,
                      int deadline, GError** error)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point since = Clock::now();
    GVariant* const reply =
        g_dbus_connection_call_sync(bus, callee.name, callee.path, callee.name, method, arguments, nullptr,
                                    G_DBUS_CALL_FLAGS_NO_AUTO_START, deadline, nullptr, error);
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - since);
    LogCall(std::string(callee.name) + '.' + method, taken, *error == nullptr ? nullptr : (*error)->message);
    return VariantPtr(reply);
}

[[noreturn]] void Fail(GError* error)
{
    const bool nobody = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
                        g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER);
    const bool invalid = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS);
    const bool refused =
        g_dbus_error_is_remote_error(error) && !g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY);
    g_dbus_error_strip_remote_error(error);
    const std::string message = error->message;
    g_error_free(error);
    if (nobody) throw Failure(kNoService, "no simulator on the bus", "start ipod-simulator");
    if (invalid) throw Failure(kUsage, message);
    if (refused) throw Failure(kNothingDone, "the simulator refused: " + message);
    throw Failure(kServiceLost, "the simulator did not answer: " + message, "check whether it hangs");
}
}  // namespace

VariantPtr AskBus(GDBusConnection* bus, const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    VariantPtr reply = CallAndLog(bus, kBusDaemon, method, arguments, kAnswerWithin, &error);
    g_clear_error(&error);
    return reply;
}

VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    VariantPtr reply = CallAndLog(session.Bus(), kSimulator, method, arguments, session.Deadline(), &error);
    if (reply == nullptr) Fail(error);
    return reply;
}
}  // namespace ctl
