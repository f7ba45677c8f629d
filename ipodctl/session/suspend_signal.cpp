#include "session/suspend_signal.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace ctl
{
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

// Only a signal that is sent to this thread is sure to stop it here.
void SuspendSignal::Obey() const
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
