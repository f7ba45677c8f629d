#include "browse/crash_guard.h"

#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>

namespace ctl::browse
{
namespace
{
constexpr std::array kCrashSignals{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS};

// Prepared in advance: a signal handler may call only async-signal-safe functions.
std::array<struct sigaction, kCrashSignals.size()> previousActions;
termios modes;
bool haveModes = false;
std::array<char, 256> resetSequence;
std::size_t resetLength = 0;

// Lets the handler run after a stack overflow.
std::array<char, 65536> alternateStack;
stack_t previousStack;

void RestoreHandlers()
{
    for (std::size_t i = 0; i < kCrashSignals.size(); ++i) sigaction(kCrashSignals[i], &previousActions[i], nullptr);
}

void OnCrashSignal(int signal)
{
    RestoreHandlers();
    [[maybe_unused]] const ssize_t ignored = write(STDOUT_FILENO, resetSequence.data(), resetLength);
    if (haveModes) tcsetattr(STDIN_FILENO, TCSANOW, &modes);
    raise(signal);
}
}  // namespace

CrashGuard::CrashGuard()
{
    haveModes = tcgetattr(STDIN_FILENO, &modes) == 0;
    resetLength = 0;
    stack_t stack{};
    stack.ss_sp = alternateStack.data();
    stack.ss_size = alternateStack.size();
    sigaltstack(&stack, &previousStack);
    struct sigaction action
    {
    };
    action.sa_handler = OnCrashSignal;
    action.sa_flags = SA_NODEFER | SA_ONSTACK;
    for (std::size_t i = 0; i < kCrashSignals.size(); ++i) sigaction(kCrashSignals[i], &action, &previousActions[i]);
}

CrashGuard::~CrashGuard()
{
    RestoreHandlers();
    sigaltstack(&previousStack, nullptr);
}

void CrashGuard::SetResetSequence(std::string_view text)
{
    resetLength = std::min(text.size(), resetSequence.size());
    std::copy_n(text.begin(), resetLength, resetSequence.begin());
}
}  // namespace ctl::browse
