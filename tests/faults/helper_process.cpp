#include "helper_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "case.h"

namespace faults
{
namespace
{
struct Pipe
{
    Pipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
        read = ends[0];
        write = ends[1];
    }

    int read;
    int write;
};

pid_t Spawn(const std::vector<std::string>& command, int input, int output)
{
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t pid = -1;
    const int failure = posix_spawn(&pid, words[0], &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("cannot start " + command.front());
    return pid;
}
}  // namespace

std::vector<std::string> HelperProcess::Own(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "/proc/self/exe");
    return arguments;
}

HelperProcess::HelperProcess(const std::vector<std::string>& command)
{
    const Pipe toIt;
    const Pipe fromIt;
    m_pid = Spawn(command, toIt.read, fromIt.write);
    close(toIt.read);
    close(fromIt.write);
    m_input = toIt.write;
    m_output = fromIt.read;
}

HelperProcess::~HelperProcess()
{
    if (m_pid > 0) Kill();
    close(m_input);
    close(m_output);
}

std::string HelperProcess::ReadLine()
{
    std::string line;
    for (char letter = 0; read(m_output, &letter, 1) == 1;)
    {
        if (letter == '\n') return line;
        line += letter;
    }
    return line;
}

void HelperProcess::WaitFor(const std::string& line)
{
    for (std::string next = ReadLine(); next != line; next = ReadLine())
        if (next.empty()) return Expect(false, "the peer process prints '" + line + "'");
}

void HelperProcess::Send(const std::string& line)
{
    const std::string text = line + "\n";
    if (write(m_input, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        Expect(false, "the peer process reads its input");
}

void HelperProcess::Signal(int number)
{
    kill(m_pid, number);
}

// The kernel delivers the signal asynchronously; until then the process may answer.
void HelperProcess::Stop()
{
    Signal(SIGSTOP);
    int status = 0;
    Expect(waitpid(m_pid, &status, WUNTRACED) == m_pid && WIFSTOPPED(status), "the process stops");
}

void HelperProcess::Kill()
{
    Signal(SIGKILL);
    Wait();
}

int HelperProcess::Wait()
{
    int status = 0;
    waitpid(m_pid, &status, 0);
    m_pid = -1;
    return status;
}
}  // namespace faults
