#include "session/loop.h"

#include <glib-unix.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <utility>

#include "output/output.h"

namespace ctl
{
namespace
{
// Returns true if the parent, such as nohup, made the process ignore SIGHUP.
bool HangUpIsIgnored()
{
    struct sigaction action
    {
    };
    return sigaction(SIGHUP, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}
}  // namespace

Loop::Loop() : m_loop(g_main_loop_new(nullptr, FALSE))
{
    AddSignals();
}

Loop::~Loop()
{
    for (const guint source : m_sources) g_source_remove(source);
    g_main_loop_unref(m_loop);
}

Ending Loop::Run(double seconds)
{
    const guint timer = seconds > 0 ? g_timeout_add(static_cast<guint>(seconds * 1000), &Loop::OnTimeout, this) : 0;
    m_ending = Ending::Finished;
    if (m_thrown == nullptr) g_main_loop_run(m_loop);
    if (timer != 0) g_source_remove(timer);
    if (m_thrown != nullptr) std::rethrow_exception(std::exchange(m_thrown, nullptr));
    return m_ending;
}

void Loop::EndWithOutput()
{
    const auto closed = static_cast<GIOCondition>(G_IO_ERR | G_IO_HUP);
    m_sources.push_back(g_unix_fd_add(STDOUT_FILENO, closed, &Loop::OnOutputClosed, this));
}

void Loop::WhenReadable(int descriptor, std::function<void()> function)
{
    m_sources.push_back(g_unix_fd_add_full(G_PRIORITY_DEFAULT, descriptor, G_IO_IN, &Loop::OnReadable,
                                           new Reader{*this, std::move(function)},
                                           [](gpointer reader) { delete static_cast<Reader*>(reader); }));
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

void Loop::AddSignals()
{
    m_sources.push_back(g_unix_signal_add(SIGINT, &Loop::OnSignal<SIGINT>, this));
    m_sources.push_back(g_unix_signal_add(SIGTERM, &Loop::OnSignal<SIGTERM>, this));
    if (!HangUpIsIgnored()) m_sources.push_back(g_unix_signal_add(SIGHUP, &Loop::OnSignal<SIGHUP>, this));
}

// An interruption takes precedence over other endings in the same iteration.
void Loop::End(Ending ending)
{
    if (m_ending != Ending::Interrupted) m_ending = ending;
    g_main_loop_quit(m_loop);
}

template <int signal>
gboolean Loop::OnSignal(gpointer loop)
{
    static_cast<Loop*>(loop)->m_signal = signal;
    static_cast<Loop*>(loop)->End(Ending::Interrupted);
    return G_SOURCE_CONTINUE;
}

gboolean Loop::OnTimeout(gpointer loop)
{
    static_cast<Loop*>(loop)->End(Ending::TimedOut);
    return G_SOURCE_CONTINUE;
}

gboolean Loop::OnReadable(gint, GIOCondition, gpointer data)
{
    const Reader& reader = *static_cast<Reader*>(data);
    reader.loop.Guard(reader.function);
    return G_SOURCE_CONTINUE;
}

gboolean Loop::OnOutputClosed(gint, GIOCondition, gpointer loop)
{
    static_cast<Loop*>(loop)->Guard([] { throw OutputClosed{}; });
    return G_SOURCE_CONTINUE;
}

namespace
{
sigset_t Set()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTSTP);
    return set;
}

void Mask(int how)
{
    const sigset_t set = Set();
    pthread_sigmask(how, &set, nullptr);
}
}  // namespace

SuspendSignal::SuspendSignal()
{
    Mask(SIG_BLOCK);
    const sigset_t set = Set();
    m_descriptor = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

SuspendSignal::~SuspendSignal()
{
    close(m_descriptor);
    Mask(SIG_UNBLOCK);
}

// Uses raise(): only a signal directed at this thread is guaranteed to stop it here.
void SuspendSignal::Suspend() const
{
    signalfd_siginfo taken;
    if (read(m_descriptor, &taken, sizeof(taken)) != sizeof(taken)) return;
    struct sigaction earlier
    {
    };
    struct sigaction stop
    {
    };
    stop.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &stop, &earlier);
    raise(SIGTSTP);
    Mask(SIG_UNBLOCK);
    Mask(SIG_BLOCK);
    sigaction(SIGTSTP, &earlier, nullptr);
}
}  // namespace ctl
