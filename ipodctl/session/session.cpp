#include "session/session.h"

#include <algorithm>
#include <string>

#include "output/failure.h"
#include "session/bus_daemon.h"

namespace ctl
{
namespace
{
// Beyond the deadline of each answer: a creator of shared memory, or a lock of a dead process.
constexpr double kPatience = 12;

// The bus answers in place of a service that is gone; everything else with a name is the service's own answer.
bool IsAnswerOfService(const std::string& reason)
{
    constexpr const char* kOfTheBus[] = {"ServiceUnknown", "NameHasNoOwner", "NoReply", "Timeout", "Disconnected"};
    if (reason.rfind("GDBus.Error:", 0) != 0) return false;
    return std::none_of(std::begin(kOfTheBus), std::end(kOfTheBus),
                        [&](const char* name) {
                            return reason.rfind(std::string("GDBus.Error:org.freedesktop.DBus.Error.") + name, 0) == 0;
                        });
}

// In the words of GLib, which compares the type of each answer with the contract.
bool IsBrokenAnswer(const std::string& reason)
{
    return reason.find(" returned type ") != std::string::npos;
}

// Whether it got there; what stands in the way ends the run.
bool IsReady(const ipodkit::Connection& connection)
{
    if (connection.phase == ipodkit::Phase::Lost)
        throw Failure(kServiceLost, "the iPod service went away; see whether it runs, then try again");
    if (connection.error) throw ToFailure(*connection.error);
    return connection.phase == ipodkit::Phase::Ready;
}
}  // namespace

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
        throw Failure(kNoBus, "no session bus: " + reason + "; set DBUS_SESSION_BUS_ADDRESS to the service's bus");
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
    m_kit = Taken(ipodkit::Session::Open(options));
    return *m_kit;
}

ipodkit::Session& Session::Ready()
{
    if (!m_ready) AwaitReady();
    m_ready = true;
    return *m_kit;
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
    const Ending ending = loop.Run(m_settings.deadline + kPatience);
    FlushLog();
    if (ending == Ending::Interrupted) throw Interrupted{};
    if (ending == Ending::TimedOut)
        throw Failure(kServiceLost, "the iPod service did not answer in time; see whether it hangs");
}

IQBXIpodPlayer& Session::Player()
{
    Ready();
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    if (!m_initialised && !player.InitInstance())
        throw Failure(kServiceLost, "the iPod service went away; see whether it runs, then try again");
    m_initialised = true;
    return player;
}

// Lists of a service that is gone are cancelled by the companion as those that became others; people want to know why.
ipodkit::Error Session::AsLost(const ipodkit::Error& error) const
{
    const bool lost = m_kit != nullptr && m_kit->Connection().phase == ipodkit::Phase::Lost;
    if (!lost) return error;
    const bool cancelled = error.kind == ipodkit::ErrorKind::Cancelled;
    return {ipodkit::ErrorKind::ServiceLost, cancelled ? "it left the bus while it was asked" : error.reason};
}

// The bus may know how to start the service.
void Session::StartService()
{
    if (IsServiceThere()) return;
    GVariant* const reply = AskBus(Bus(), "StartServiceByName", g_variant_new("(su)", kServiceName, 0U));
    if (reply == nullptr)
        throw Failure(kNoService, std::string("no iPod service on the bus: nobody owns ") + kServiceName +
                                      "; start the service, or ipod-simulator");
    g_variant_unref(reply);
}

bool Session::IsServiceThere()
{
    GVariant* const reply = AskBus(Bus(), "NameHasOwner", g_variant_new("(s)", kServiceName));
    if (reply == nullptr) return false;
    gboolean owned = FALSE;
    g_variant_get(reply, "(b)", &owned);
    g_variant_unref(reply);
    return owned == TRUE;
}

void Session::CheckCall()
{
    const std::string reason = m_log.TakeFailure();
    if (!reason.empty() && IsAnswerOfService(reason)) throw Failure(kNothingDone, "the service refused: " + reason);
    if (IsBrokenAnswer(reason)) throw Failure(kServiceLost, "the iPod service sent a broken answer: " + reason);
    if (reason.empty() && (m_log.readable() || IsServiceThere())) return;
    const std::string what = IsServiceThere() ? "the iPod service did not answer" : "the iPod service went away";
    throw Failure(kServiceLost, what + (reason.empty() ? "" : ": " + reason) + "; see whether it runs, then try again");
}
}  // namespace ctl
