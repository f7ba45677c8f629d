#include "events/command_queue.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "events/format.h"

namespace ctl
{
namespace
{
// In bytes, below the kernel's limit for one environment string. Longer values are passed only as JSON on standard
// input.
constexpr std::size_t kLongestVariable = std::size_t{64} * 1024;

bool WriteAll(int file, const std::string& text)
{
    for (std::size_t done = 0; done < text.size();)
    {
        const ssize_t written = write(file, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) done += static_cast<std::size_t>(written);
    }
    return lseek(file, 0, SEEK_SET) == 0;
}

// Uses a memory file instead of a pipe: writing never blocks on the reader, whatever the size.
int FileWith(const std::string& text)
{
    const int file = memfd_create("ipodctl-event", MFD_CLOEXEC);
    if (file < 0 || WriteAll(file, text)) return file;
    close(file);
    return -1;
}

gchar** EnvironmentWith(const Json& fields)
{
    gchar** environment = g_get_environ();
    for (const auto& [name, value] : fields.items())
    {
        const std::string text = Shown(value);
        if (text.size() <= kLongestVariable)
            environment = g_environ_setenv(environment, VariableFor(name).c_str(), text.c_str(), TRUE);
    }
    return environment;
}

// Creates a process group, so that Stop() reaches all descendants of the command, and a signal from the terminal does
// not reach them a second time.
void BecomeGroup(gpointer)
{
    setpgid(0, 0);
}

std::string Ended(int status)
{
    return WIFSIGNALED(status) ? "the command was killed by signal " + std::to_string(WTERMSIG(status))
                               : "the command failed with exit code " + std::to_string(WEXITSTATUS(status));
}
}  // namespace

CommandQueue::CommandQueue(std::string command, std::function<void()> idle,
                           std::function<void(const std::string&)> complain)
    : m_command(std::move(command)), m_idle(std::move(idle)), m_complain(std::move(complain))
{
}

CommandQueue::~CommandQueue()
{
    if (m_watch != 0) g_source_remove(m_watch);
}

void CommandQueue::Add(Job job)
{
    m_waiting.push_back(std::move(job));
    if (IsIdle()) StartNext();
}

// Sends SIGCONT as well: the command may be stopped, for example after reading from the terminal.
void CommandQueue::Stop(int signal)
{
    Drop();
    if (IsIdle()) return;
    kill(-m_child, m_stopped ? SIGKILL : signal);
    kill(-m_child, SIGCONT);
    m_stopped = true;
}

void CommandQueue::StartNext()
{
    while (IsIdle() && !m_waiting.empty())
    {
        const Job job = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (!Start(job)) m_complain("cannot start the command: " + m_command);
    }
    if (IsIdle()) m_idle();
}

bool CommandQueue::Start(const Job& job)
{
    const int input = FileWith(job.input);
    std::string shell = "/bin/sh";
    std::string option = "-c";
    gchar* arguments[] = {shell.data(), option.data(), m_command.data(), nullptr};
    gchar** const environment = EnvironmentWith(job.fields);
    const gboolean started = g_spawn_async_with_fds(nullptr, arguments, environment, G_SPAWN_DO_NOT_REAP_CHILD,
                                                    &BecomeGroup, nullptr, &m_child, input, -1, -1, nullptr);
    g_strfreev(environment);
    if (input >= 0) close(input);
    if (started == FALSE) return false;
    m_watch = g_child_watch_add(m_child, &CommandQueue::OnEnded, this);
    return true;
}

void CommandQueue::OnEnded(GPid, gint status, gpointer data)
{
    auto& queue = *static_cast<CommandQueue*>(data);
    queue.m_child = 0;
    queue.m_watch = 0;
    if (status != 0 && !queue.m_stopped) queue.m_complain(Ended(status));
    queue.StartNext();
}

std::string VariableFor(const std::string& field)
{
    std::string name = "IPOD_";
    for (const char c : field) name += g_ascii_toupper(c);
    return name;
}
}  // namespace ctl
