// ipod-companiond: media controls, the state on the bus, and a memory for sessions that start late.
#include <QBXLog.h>
#include <glib-unix.h>
#include <ipodkit/session.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "player.h"
#include "root.h"
#include "state_object.h"

namespace companion
{
namespace
{
enum ExitCode
{
    kDone = 0,
    kNoOutput = 1,
    kUsage = 2,
    kNoBus = 3,
    kAlreadyRunning = 4,
};

constexpr char kMprisName[] = "org.mpris.MediaPlayer2.ipod";

class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const std::string& what, const char* hint = "")
        : std::runtime_error(what), m_code(code), m_hint(hint)
    {
    }
    ExitCode Code() const { return m_code; }
    const char* Hint() const { return m_hint; }

private:
    ExitCode m_code;
    const char* m_hint;  // empty without a remedy
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
        throw Failure(kAlreadyRunning, std::string("cannot acquire ") + name + ": another program owns it on this bus",
                      "stop the running daemon: systemctl --user stop ipod-companiond");
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

// Removes the artwork of a daemon that was killed, and at the end its own. Only for the owner of the names.
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

ExitCode FinishOutput()
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return kDone;
    std::fprintf(stderr, "ipod-companiond: cannot write to standard output: %s\n", g_strerror(errno));
    return kNoOutput;
}

int Main(int argc, char** argv)
{
    CLI::App app(
        "Makes the attached Apple device available to media controls, and its state to all programs, on the session "
        "bus.",
        "ipod-companiond");
    bool print = false;
    app.set_version_flag("--version", "ipod-companiond " COMPANIOND_VERSION, "Print the version and exit");
    app.add_flag("--print-interface", print, "Print the description of com.zarn.linux.ipod.State and exit");
    app.footer(
        "Exit status: 0 ended by a signal, 1 output not written, 2 usage error, 3 no session bus, 4 already running.");
    try
    {
        app.parse(argc, argv);
        if (!print) return Serve();
        std::fputs(StateInterfaceXml().c_str(), stdout);
        return FinishOutput();
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == 0)
        {
            app.exit(error);
            return FinishOutput();
        }
        std::fprintf(stderr, "ipod-companiond: %s\nhint: try 'ipod-companiond --help'\n", error.what());
        return kUsage;
    }
    catch (const Failure& failure)
    {
        std::fprintf(stderr, "ipod-companiond: %s\n", failure.what());
        if (*failure.Hint() != '\0') std::fprintf(stderr, "hint: %s\n", failure.Hint());
        return failure.Code();
    }
}
}  // namespace
}  // namespace companion

int main(int argc, char** argv)
{
    return companion::Main(argc, argv);
}
