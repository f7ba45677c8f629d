#include "memory/child_process.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>

namespace ipodkit
{
namespace
{
using End = ChildOutcome::End;

constexpr int kChildPatience = 3000;  // milliseconds
constexpr std::size_t kMostText = std::size_t{64} << 20;

bool WriteOut(int output, const std::string& text)
{
    for (std::size_t done = 0; done < text.size();)
    {
        const ssize_t written = write(output, text.data() + done, text.size() - done);
        if (written <= 0) return false;
        done += static_cast<std::size_t>(written);
    }
    return true;
}

// Returns what the child wrote. Sets @p hung if it is silent for kChildPatience or writes more than kMostText.
std::string ReadUntilEnd(int input, bool& hung)
{
    std::string text;
    char block[65536];
    for (pollfd ready{input, POLLIN, 0};;)
    {
        hung = poll(&ready, 1, kChildPatience) <= 0 || text.size() > kMostText;
        const ssize_t count = hung ? 0 : read(input, block, sizeof(block));
        if (count <= 0) return text;
        text.append(block, static_cast<std::size_t>(count));
    }
}

ChildOutcome OutcomeOf(pid_t child, std::string text, bool hung)
{
    if (hung) kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (hung) return {End::Hung, ""};
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return {End::Crashed, ""};
    return {End::Well, std::move(text)};
}
}  // namespace

ChildOutcome RunInChild(const std::function<std::string()>& work)
{
    int ends[2];
    if (pipe(ends) != 0) return {End::NotStarted, ""};
    const pid_t child = fork();
    if (child == 0) _exit(WriteOut(ends[1], work()) ? 0 : 1);
    close(ends[1]);
    bool hung = false;
    std::string text = child < 0 ? std::string() : ReadUntilEnd(ends[0], hung);
    close(ends[0]);
    return child < 0 ? ChildOutcome{End::NotStarted, ""} : OutcomeOf(child, std::move(text), hung);
}
}  // namespace ipodkit
