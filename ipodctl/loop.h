/// @file
/// Runs the main loop in which events arrive, until something ends it.
#pragma once

#include <glib.h>

#include <exception>
#include <functional>

#include "session.h"

namespace ctl
{
enum class Ending
{
    Finished,     ///< Finish() was called
    TimedOut,     ///< the time was up
    Interrupted,  ///< Ctrl-C, or asked to terminate
};

/// The main loop with its ends. May be run again.
class Loop
{
public:
    explicit Loop(Session& session);
    ~Loop();
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    /// Runs until one of the endings, delivering events meanwhile.
    ///
    /// @param seconds  time limit; 0 or below for none
    /// @throws OutputClosed  the reader of standard output is gone
    /// @throws Failure       the service left the bus, or the bus closed
    /// @throws              whatever a function given to Guard() threw
    Ending Run(double seconds);

    void Finish() { End(Ending::Finished); }

    /// Calls a function from inside an event; what it throws comes out of Run(), because no exception may pass
    /// through the layers in between.
    void Guard(const std::function<void()>& function);

private:
    static gboolean OnSignal(gpointer loop);
    static gboolean OnTimeout(gpointer loop);
    static gboolean OnOutputClosed(gint, GIOCondition, gpointer loop);
    static void OnServiceLost(GDBusConnection* bus, const gchar* name, gpointer loop);
    void End(Ending ending);

    Session& m_session;
    GMainLoop* m_loop;
    Ending m_ending = Ending::Finished;
    std::exception_ptr m_thrown;
    guint m_watch;
    guint m_sources[3];
};
}  // namespace ctl
