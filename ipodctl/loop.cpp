#include "loop.h"

#include <glib-unix.h>
#include <unistd.h>

#include <csignal>

#include "failure.h"
#include "output.h"

namespace ctl
{
namespace
{
constexpr char kServiceName[] = "com.zarn.linux.ipod";
}

Loop::Loop(Session& session)
    : m_session(session),
      m_loop(g_main_loop_new(nullptr, FALSE)),
      m_watch(g_bus_watch_name_on_connection(session.Bus(), kServiceName, G_BUS_NAME_WATCHER_FLAGS_NONE, nullptr,
                                             &Loop::OnServiceLost, this, nullptr)),
      m_sources{
          g_unix_signal_add(SIGINT, &Loop::OnSignal, this), g_unix_signal_add(SIGTERM, &Loop::OnSignal, this),
          g_unix_fd_add(STDOUT_FILENO, static_cast<GIOCondition>(G_IO_ERR | G_IO_HUP), &Loop::OnOutputClosed, this)}
{
}

Loop::~Loop()
{
    for (const guint source : m_sources) g_source_remove(source);
    g_bus_unwatch_name(m_watch);
    g_main_loop_unref(m_loop);
}

Ending Loop::Run(double seconds)
{
    const guint timer = seconds > 0 ? g_timeout_add(static_cast<guint>(seconds * 1000), &Loop::OnTimeout, this) : 0;
    g_main_loop_run(m_loop);
    if (timer != 0) g_source_remove(timer);
    m_session.FlushLog();
    if (m_thrown != nullptr) std::rethrow_exception(m_thrown);
    return m_ending;
}

void Loop::Guard(const std::function<void()>& function)
{
    try
    {
        if (m_thrown == nullptr) function();
    }
    catch (...)
    {
        m_thrown = std::current_exception();
        g_main_loop_quit(m_loop);
    }
}

void Loop::End(Ending ending)
{
    m_ending = ending;
    g_main_loop_quit(m_loop);
}

gboolean Loop::OnSignal(gpointer loop)
{
    static_cast<Loop*>(loop)->End(Ending::Interrupted);
    return G_SOURCE_CONTINUE;
}

gboolean Loop::OnTimeout(gpointer loop)
{
    static_cast<Loop*>(loop)->End(Ending::TimedOut);
    return G_SOURCE_CONTINUE;
}

gboolean Loop::OnOutputClosed(gint, GIOCondition, gpointer loop)
{
    static_cast<Loop*>(loop)->Guard([] { throw OutputClosed{}; });
    return G_SOURCE_CONTINUE;
}

// Without a connection, it is the bus that is gone. A question that was under way still has the closed one.
void Loop::OnServiceLost(GDBusConnection* bus, const gchar*, gpointer loop)
{
    static_cast<Loop*>(loop)->Guard(
        [bus]
        {
            throw Failure(kServiceLost, bus == nullptr || g_dbus_connection_is_closed(bus)
                                            ? "the session bus closed the connection"
                                            : "the iPod service left the bus; start it again, then try again");
        });
}
}  // namespace ctl
