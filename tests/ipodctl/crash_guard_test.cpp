#include "browse/screen.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <csignal>
#include <cstdlib>
#include <string>

namespace
{
// Recurses until the stack overflows, in a form that the compiler cannot turn into a loop.
// NOLINTNEXTLINE(misc-no-recursion)
int Overflow(volatile char* above)
{
    volatile char block[4096];
    block[0] = *above;
    return *above == 0 ? 0 : Overflow(block) + block[0];
}

void Abort()
{
    std::abort();
}

void OverflowStack()
{
    volatile char start = 1;
    _exit(Overflow(&start));
}

/// The result of crashing a process that has changed its terminal modes.
struct Crash
{
    int status = 0;
    std::string written;
    bool modesRestored = false;
};

[[noreturn]] void RunOn(int terminal, void (*fail)())
{
    login_tty(terminal);
    const ctl::browse::CrashGuard guard;
    ctl::browse::CrashGuard::SetResetSequence("resetSequence");
    termios modes{};
    tcgetattr(STDIN_FILENO, &modes);
    cfmakeraw(&modes);
    tcsetattr(STDIN_FILENO, TCSANOW, &modes);
    fail();
    _exit(0);
}

Crash CrashBy(void (*fail)())
{
    int controller = -1;
    int terminal = -1;
    EXPECT_EQ(openpty(&controller, &terminal, nullptr, nullptr, nullptr), 0);
    termios before{};
    tcgetattr(terminal, &before);
    const pid_t child = fork();
    if (child == 0) RunOn(terminal, fail);
    Crash crash;
    EXPECT_EQ(waitpid(child, &crash.status, 0), child);
    termios after{};
    tcgetattr(terminal, &after);
    crash.modesRestored = before.c_lflag == after.c_lflag && before.c_iflag == after.c_iflag;
    close(terminal);
    char text[64];
    const ssize_t got = read(controller, text, sizeof(text));
    if (got > 0) crash.written.assign(text, static_cast<std::size_t>(got));
    close(controller);
    return crash;
}

void ExpectTerminalRestored(const Crash& crash, int signal)
{
    EXPECT_TRUE(WIFSIGNALED(crash.status)) << crash.status;
    EXPECT_EQ(WTERMSIG(crash.status), signal);
    EXPECT_TRUE(crash.modesRestored);
    // QEMU appends its own message.
    EXPECT_EQ(crash.written.substr(0, crash.written.find("qemu: ")), "resetSequence");
}
}  // namespace

TEST(CrashGuard, RestoresTheTerminalAfterACrash)
{
    ExpectTerminalRestored(CrashBy(Abort), SIGABRT);
}

TEST(CrashGuard, RestoresTheTerminalAfterAStackOverflow)
{
    ExpectTerminalRestored(CrashBy(OverflowStack), SIGSEGV);
}
