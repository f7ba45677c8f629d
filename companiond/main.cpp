// ipod-companiond: media controls, the state on the bus, and past events for sessions that start late.
#include <QBXLog.h>
#include <cli/program.h>
#include <glib-unix.h>
#include <ipodkit/session.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "command_line.h"
#include "player.h"
#include "root.h"
#include "state_object.h"

namespace companion
{
namespace
{
constexpr char kMprisName[] = "org.mpris.MediaPlayer2.ipod";

class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const std::string& what) : std::runtime_error(what), m_code(code) {}
    ExitCode Code() const { return m_code; }

private:
    ExitCode m_code;
};

struct ObjectUnref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};
using ConnectionPtr = std::unique_ptr<GDBusConnection, ObjectUnref>;

Failure BusFailure(GError* error)
{
    const std::string reason = error->message;
    g_error_free(error);
    return {kNoBus, "cannot use the session bus: " + reason};
}

ConnectionPtr ConnectToBus()
{
    GError* error = nullptr;
    ConnectionPtr connection(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (connection == nullptr) throw BusFailure(error);
    g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    return connection;
}

void AcquireName(GDBusConnection* connection, const char* name)
{
    constexpr guint kDoNotQueue = 4;
    constexpr guint kOwner = 1;
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name, kDoNotQueue), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    if (reply == nullptr) throw BusFailure(error);
    guint result = 0;
    g_variant_get(Owned(reply).get(), "(u)", &result);
    if (result != kOwner)
        throw Failure(kAlreadyRunning, std::string("cannot acquire ") + name +
                                           ": another program owns it on this bus\nhint: stop the running daemon: "
                                           "systemctl --user stop ipod-companiond");
}

gboolean Quit(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_CONTINUE;
}

// Handles SIGTERM, SIGINT, and SIGHUP from its construction on: another program may send one as soon as the names are
// owned.
class Loop
{
public:
    explicit Loop(GDBusConnection* connection)
        : m_connection(connection),
          m_loop(g_main_loop_new(nullptr, FALSE)),
          m_terminated(g_unix_signal_add(SIGTERM, Quit, m_loop)),
          m_interrupted(g_unix_signal_add(SIGINT, Quit, m_loop)),
          m_hungUp(g_unix_signal_add(SIGHUP, Quit, m_loop)),
          m_closed(g_signal_connect_swapped(connection, "closed", G_CALLBACK(g_main_loop_quit), m_loop))
    {
    }
    ~Loop()
    {
        g_signal_handler_disconnect(m_connection, m_closed);
        g_source_remove(m_terminated);
        g_source_remove(m_interrupted);
        g_source_remove(m_hungUp);
        g_main_loop_unref(m_loop);
    }
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    // Runs until one of these signals arrives, or the bus closes the connection.
    ExitCode Run()
    {
        if (g_dbus_connection_is_closed(m_connection) == FALSE) g_main_loop_run(m_loop);
        return g_dbus_connection_is_closed(m_connection) == FALSE ? kDone : kNoBus;
    }

private:
    GDBusConnection* const m_connection;
    GMainLoop* const m_loop;
    const guint m_terminated;
    const guint m_interrupted;
    const guint m_hungUp;
    const gulong m_closed;
};

// Removes the artwork that a killed daemon left behind, and this daemon's own at the end. Create it only after the
// names were acquired.
class ArtworkCleanup
{
public:
    ArtworkCleanup() { Remove(); }
    ~ArtworkCleanup() { Remove(); }
    ArtworkCleanup(const ArtworkCleanup&) = delete;
    ArtworkCleanup& operator=(const ArtworkCleanup&) = delete;

private:
    static void Remove()
    {
        std::error_code ignored;
        std::filesystem::remove_all(ArtworkDirectory(), ignored);
    }
};

// Without a settle time, a session that reads the state gets every event that the service sent before.
ipodkit::SessionOptions Options()
{
    ipodkit::SessionOptions options;
    options.settle = std::chrono::milliseconds(0);
    return options;
}

ExitCode Serve()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const ConnectionPtr connection = ConnectToBus();
    Loop loop(connection.get());
    Counters counters;
    const auto session = ipodkit::Session::Open(Options());
    if (!session) throw Failure(kUsage, session.error().Text());
    const Root root(connection.get());
    Player player(connection.get(), **session, counters);
    StateObject state(connection.get(), counters);
    AcquireName(connection.get(), kStateName);
    AcquireName(connection.get(), kMprisName);
    const ArtworkCleanup cleanup;
    const auto follow = [&](const ipodkit::StatePtr& next, ipodkit::Fields)
    {
        counters.CountRestarts(next->generation);
        state.Follow(next);
        player.Follow(next);
    };
    const ipodkit::Subscription following = (*session)->OnState("companion daemon", follow);
    const ExitCode code = loop.Run();
    if (code == kNoBus) throw Failure(kNoBus, "the session bus closed the connection");
    return code;
}

int PrintInterface()
{
    std::fputs(StateInterfaceXml().c_str(), stdout);
    return cli::FlushOutput(kProgram);
}

int Run(bool printInterface)
try
{
    return printInterface ? PrintInterface() : Serve();
}
catch (const Failure& failure)
{
    cli::PrintError(kProgram, failure.what());
    return failure.Code();
}
}  // namespace
}  // namespace companion

int main(int argc, char** argv)
{
    bool printInterface = false;
    const auto run = [&printInterface] { return companion::Run(printInterface); };
    return cli::RunProgram(argc, argv, companion::CommandLineOf(printInterface), run);
}
