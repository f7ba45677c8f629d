#include "session/sim_link.h"

#include "output/failure.h"
#include "session/bus_daemon.h"

namespace ctl
{
namespace
{
constexpr Address kSimulator{"com.zarn.linux.ipod.Simulator", "/com/zarn/linux/ipod/simulator"};

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
    if (nobody) throw Failure(kNoService, "no simulator on the bus; start ipod-simulator");
    if (invalid) throw Failure(kUsage, message);
    if (refused) throw Failure(kNothingDone, "the simulator refused: " + message);
    throw Failure(kServiceLost, "the simulator did not answer: " + message + "; see whether it hangs");
}
}  // namespace

VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* const reply = CallAndLog(session.Bus(), kSimulator, method, arguments, session.Deadline(), &error);
    if (reply == nullptr) Fail(error);
    return VariantPtr(reply);
}
}  // namespace ctl
