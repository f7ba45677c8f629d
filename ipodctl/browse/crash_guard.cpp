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

void RestoreHandlers()
{
    for (std::size_t i = 0; i < kMistakes.size(); ++i) sigaction(kMistakes[i], &earlier[i], nullptr);
}

void OnMistake(int signal)
{
    RestoreHandlers();
    const ssize_t written = write(STDOUT_FILENO, farewell.data(), farewellLength);
    if (modesKnown && written >= -1) tcsetattr(STDIN_FILENO, TCSANOW, &modes);
    raise(signal);
}
}  // namespace

CrashGuard::CrashGuard()
{
    modesKnown = tcgetattr(STDIN_FILENO, &modes) == 0;
    farewellLength = 0;
    struct sigaction action
    {
    };
    action.sa_handler = OnMistake;
    action.sa_flags = SA_NODEFER;
    for (std::size_t i = 0; i < kMistakes.size(); ++i) sigaction(kMistakes[i], &action, &earlier[i]);
}

CrashGuard::~CrashGuard()
{
    RestoreHandlers();
}

void CrashGuard::SendAtCrash(std::string_view text)
{
    farewellLength = std::min(text.size(), farewell.size());
    std::copy_n(text.begin(), farewellLength, farewell.begin());
}
}  // namespace ctl::browse
