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
constexpr std::array kMistakes{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS};

// What the handler needs is made before: it may call next to nothing.
std::array<struct sigaction, kMistakes.size()> earlier;
termios modes;
bool modesKnown = false;
std::array<char, 256> farewell;
std::size_t farewellLength = 0;

// For a handler that runs because the usual stack is full.
std::array<char, 65536> otherStack;
stack_t earlierStack;

void RestoreHandlers()
{
    for (std::size_t i = 0; i < kMistakes.size(); ++i) sigaction(kMistakes[i], &earlier[i], nullptr);
}

void OnMistake(int signal)
{
    RestoreHandlers();
    [[maybe_unused]] const ssize_t ignored = write(STDOUT_FILENO, farewell.data(), farewellLength);
    if (modesKnown) tcsetattr(STDIN_FILENO, TCSANOW, &modes);
    raise(signal);
}
}  // namespace

CrashGuard::CrashGuard()
{
    modesKnown = tcgetattr(STDIN_FILENO, &modes) == 0;
    farewellLength = 0;
    stack_t stack{};
    stack.ss_sp = otherStack.data();
    stack.ss_size = otherStack.size();
    sigaltstack(&stack, &earlierStack);
    struct sigaction action
    {
    };
    action.sa_handler = OnMistake;
    action.sa_flags = SA_NODEFER | SA_ONSTACK;
    for (std::size_t i = 0; i < kMistakes.size(); ++i) sigaction(kMistakes[i], &action, &earlier[i]);
}

CrashGuard::~CrashGuard()
{
    RestoreHandlers();
    sigaltstack(&earlierStack, nullptr);
}

void CrashGuard::SendAtCrash(std::string_view text)
{
    farewellLength = std::min(text.size(), farewell.size());
    std::copy_n(text.begin(), farewellLength, farewell.begin());
}
}  // namespace ctl::browse
