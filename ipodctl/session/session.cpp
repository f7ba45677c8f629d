#include "session/session.h"

#include <QBXLog.h>

#include <chrono>
#include <cstring>
#include <string>

#include "output/failure.h"

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

namespace
{
// Seconds to wait in addition to the reply deadline: attaching may wait for the creator of the shared memory, or for a
// lock held by a dead process.
constexpr double kPatience = 12;

// Seconds without a sign of the service after which Session checks again that it is there: it may have exited before
// ipodkit began to watch it.
constexpr double kAbsence = 1;

// Sets up logging, which head unit applications do themselves. The library has already applied QBX_LOG before main().
void SetLoggingUp(bool verbose)
{
    if (verbose || liblog_category == nullptr) QBX_LogInit(verbose ? "DEBUG" : "ERROR:/dev/null");
}

// Returns whether the connection is ready. Throws Failure if it is lost or has an error.
bool IsReady(const ipodkit::Connection& connection)
{
    if (connection.phase == ipodkit::Phase::Lost)
        throw Failure(kServiceLost, "the iPod service disappeared", kHintForLost);
    if (connection.error) throw ToFailure(*connection.error);
    return connection.phase == ipodkit::Phase::Ready;
}
}  // namespace

Session::Session(const Settings& settings) : m_settings(settings)
{
    SetLoggingUp(settings.verbose);
}

Session::~Session()
{
    m_kit.reset();
    if (m_bus != nullptr) g_object_unref(m_bus);
}

GDBusConnection* Session::Bus()
{
    if (m_bus != nullptr) return m_bus;
    GError* error = nullptr;
    m_bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    if (m_bus == nullptr)
    {
        const std::string reason = error->message;
        g_error_free(error);
        throw Failure(kNoBus, "no session bus: " + reason, "set DBUS_SESSION_BUS_ADDRESS to the service's bus");
    }
    g_dbus_connection_set_exit_on_close(m_bus, FALSE);
    return m_bus;
}

ipodkit::Session& Session::Kit()
{
    if (m_kit == nullptr) StartService();
    return KitWithoutService();
}

ipodkit::Session& Session::KitWithoutService()
{
    if (m_kit != nullptr) return *m_kit;
    Bus();
    ipodkit::SessionOptions options;
    options.deadline = std::chrono::milliseconds(Deadline());
    m_kit = ValueOf(ipodkit::Session::Open(options));
    return *m_kit;
}

ipodkit::Session& Session::Ready()
{
    if (!m_ready) AwaitReady();
    m_ready = true;
    return *m_kit;
}

void Session::HoldLevel(ipodkit::Browsing how)
{
    if (!m_level) m_level = ValueOf(Await(ipodkit::BrowseLease::Acquire(Kit(), how)));
}

void Session::AwaitReady()
{
    Loop loop;
    const auto judge = [&loop](const ipodkit::Connection& connection)
    {
        loop.Guard(
            [&]
            {
                if (IsReady(connection)) loop.Finish();
            });
    };
    const ipodkit::Subscription watch = Kit().OnConnection("ipodctl", judge);
    Ending ending = loop.Run(kAbsence);
    if (ending == Ending::TimedOut && Kit().Connection().phase == ipodkit::Phase::Absent) StartService();
    if (ending == Ending::TimedOut) ending = loop.Run(m_settings.deadline + kPatience - kAbsence);
    if (ending == Ending::Interrupted) throw Interrupted{};
    if (ending == Ending::TimedOut)
        throw Failure(kServiceLost, "the iPod service did not answer in time", "check whether it hangs");
}

// When the service exits, ipodkit cancels pending requests as if another program had changed their subject.
Failure Session::FailureFor(const ipodkit::Error& error, const Refusal& refusal) const
{
    const bool lost = m_kit != nullptr && m_kit->Connection().phase == ipodkit::Phase::Lost;
    if (!lost) return ToFailure(error, refusal);
    const bool cancelled = error.kind == ipodkit::ErrorKind::Cancelled;
    return ToFailure({ipodkit::ErrorKind::ServiceLost, cancelled ? "it left the bus before it answered" : error.reason},
                     refusal);
}

// The bus daemon may be able to activate the service.
void Session::StartService()
{
    if (IsServiceThere()) return;
    if (AskBus(Bus(), "StartServiceByName", g_variant_new("(su)", kServiceName, 0U)) == nullptr)
        throw Failure(kNoService, std::string("no iPod service on the bus: nobody owns ") + kServiceName,
                      "start the service, or ipod-simulator");
}

bool Session::IsServiceThere()
{
    const VariantPtr reply = AskBus(Bus(), "NameHasOwner", g_variant_new("(s)", kServiceName));
    if (reply == nullptr) return false;
    gboolean owned = FALSE;
    g_variant_get(reply.get(), "(b)", &owned);
    return owned == TRUE;
}
}  // namespace ctl
