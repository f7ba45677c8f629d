/// @file
/// Runs the main loop in which answers and events arrive, until something ends it.
#pragma once

#include <glib.h>

#include <exception>
#include <functional>
#include <vector>

namespace ctl
{
enum class Ending
{
    Finished,     ///< Finish() was called
    TimedOut,     ///< the time was up
    Interrupted,  ///< Ctrl-C, or asked to terminate, or the terminal went away
};

/// The main loop with its ends. May be run again. While it exists, Ctrl-C ends it and not the process.
class Loop
{
public:
    Loop();
    ~Loop();
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    /// Runs until one of the endings, delivering answers and events meanwhile.
    ///
    /// @param seconds  time limit; 0 or below for none
    /// @throws OutputClosed  the reader of standard output is gone, after EndWithOutput()
    /// @throws               whatever a function given to Guard() threw
    Ending Run(double seconds);

    void Finish() { End(Ending::Finished); }

    /// The signal that interrupted it last, 0 for none.
    int Signal() const { return m_signal; }

    /// From now on it also ends when nobody reads standard output any more.
    void EndWithOutput();

    /// From now on it calls a function whenever a descriptor can be read.
    void WhenReadable(int descriptor, std::function<void()> function);

    /// Calls a function from inside a callback; what it throws comes out of Run(), because no exception may pass
    /// through the layers in between.
    void Guard(const std::function<void()>& function);

private:
    template <int signal>
    static gboolean OnSignal(gpointer loop);
    static gboolean OnTimeout(gpointer loop);
    struct Reader
    {
        Loop& loop;
        std::function<void()> function;
    };

    static gboolean OnReadable(gint, GIOCondition, gpointer data);
    static gboolean OnOutputClosed(gint, GIOCondition, gpointer loop);
    void AddSignals();
    void End(Ending ending);

    GMainLoop* m_loop;
    Ending m_ending = Ending::Finished;
    int m_signal = 0;
    std::exception_ptr m_thrown;
    std::vector<guint> m_sources;
};

/// From construction to destruction, the request to suspend arrives on a descriptor instead of suspending. To be
/// constructed before any other thread is, because they inherit that.
class SuspendSignal
{
public:
    SuspendSignal();
    ~SuspendSignal();
    SuspendSignal(const SuspendSignal&) = delete;
    SuspendSignal& operator=(const SuspendSignal&) = delete;

    /// Readable when it was requested.
    int Descriptor() const { return m_descriptor; }

    /// Suspends the program, as requested; returns when it goes on.
    void Obey() const;

private:
    int m_descriptor;
};
}  // namespace ctl
