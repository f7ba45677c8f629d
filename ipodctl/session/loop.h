/// @file
/// Runs the GLib main loop, which delivers replies and events, until it finishes, times out, or is interrupted.
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
    TimedOut,     ///< the time limit expired
    Interrupted,  ///< SIGINT, SIGTERM, or SIGHUP
};

/// A main loop that can be run repeatedly. While an instance exists, Ctrl-C ends the loop instead of the process.
class Loop
{
public:
    Loop();
    ~Loop();
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    /// Blocks until the loop ends; delivers replies and events meanwhile.
    ///
    /// @param seconds  time limit; no limit if 0 or negative
    /// @throws OutputClosed  if the reader of standard output closed it, after EndWithOutput()
    /// Rethrows exceptions thrown by functions passed to Guard().
    Ending Run(double seconds);

    void Finish() { End(Ending::Finished); }

    /// Returns the last signal that interrupted the loop, 0 if none did.
    int Signal() const { return m_signal; }

    /// Makes Run() throw OutputClosed when the reader of standard output closes it.
    void EndWithOutput();

    /// Calls a function from the loop whenever @p descriptor is readable. The caller keeps ownership of the descriptor.
    void WhenReadable(int descriptor, std::function<void()> function);

    /// Calls a function from within a callback. Exceptions must not propagate through the C frames of GLib, so Run()
    /// rethrows them.
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

/// Redirects SIGTSTP to a descriptor during its lifetime. Construct it before starting threads, because they inherit
/// the signal mask.
class SuspendSignal
{
public:
    SuspendSignal();
    ~SuspendSignal();
    SuspendSignal(const SuspendSignal&) = delete;
    SuspendSignal& operator=(const SuspendSignal&) = delete;

    /// Returns the descriptor, which becomes readable when SIGTSTP arrives. Owned by this object.
    int Descriptor() const { return m_descriptor; }

    /// Suspends the process if SIGTSTP is pending; returns when the process resumes.
    void Suspend() const;

private:
    int m_descriptor;
};
}  // namespace ctl
