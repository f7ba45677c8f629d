#include "session.h"

#include <exception>
#include <string>

#include "failure.h"

namespace ctl
{
namespace
{
constexpr char kServiceName[] = "com.zarn.linux.ipod";
constexpr int kAnswerWithin = 10000;

// Calls the bus itself; null when it refused.
GVariant* AskBus(GDBusConnection* bus, const char* method, GVariant* arguments)
{
    return g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                       method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, kAnswerWithin, nullptr,
                                       nullptr);
}

// The bus answers in place of a service that is gone; everything else with a name is the service's own answer.
bool IsAnswerOfService(const std::string& reason)
{
    constexpr const char* kOfTheBus[] = {"ServiceUnknown", "NameHasNoOwner", "NoReply", "Timeout", "Disconnected"};
    if (reason.rfind("GDBus.Error:", 0) != 0) return false;
    for (const char* name : kOfTheBus)
        if (reason.rfind(std::string("GDBus.Error:org.freedesktop.DBus.Error.") + name, 0) == 0) return false;
    return true;
}

IQBXIpodPlayer* BuildPlayer()
{
    try
    {
        return QBX_GetIpodPlayer();
    }
    catch (const std::exception& error)
    {
        throw Failure(kNoSegments,
                      std::string("cannot attach the shared memory: ") + error.what() +
                          "; see who owns ListVectorSharedMemory and BufferVectorSharedMemory in /dev/shm");
    }
}
}  // namespace

Session::~Session()
{
    if (m_player != nullptr)
    {
        m_player->ExitInstance();
        QBX_DestroyIpodPlayer();
    }
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

IQBXIpodPlayer& Session::Player()
{
    if (m_player == nullptr) Connect();
    return *m_player;
}

void Session::Connect()
{
    StartService();
    m_player = BuildPlayer();
    if (!m_player->InitInstance())
        throw Failure(kServiceLost, "the iPod service went away while connecting; see whether it runs, then try again");
    m_log.TakeFailure();
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
    if (reason.empty() && (m_log.readable() || IsServiceThere())) return;
    const std::string what = IsServiceThere() ? "the iPod service did not answer" : "the iPod service went away";
    throw Failure(kServiceLost, what + (reason.empty() ? "" : ": " + reason) + "; see whether it runs, then try again");
}
}  // namespace ctl
