/// @file
/// Runs a shell command for each event, one at a time, without blocking the main loop.
#pragma once

#include <glib.h>

#include <deque>
#include <functional>
#include <string>

#include "output/output.h"

namespace ctl
{
class CommandQueue
{
public:
    struct Job
    {
        Json fields;        ///< passed as environment variables; see VariableFor()
        std::string input;  ///< standard input of the command
    };

    /// @param idle      called when no job is running or pending anymore
    /// @param complain  called with the message if a command cannot be started or fails
    CommandQueue(std::string command, std::function<void()> idle, std::function<void(const std::string&)> complain);
    ~CommandQueue();
    CommandQueue(const CommandQueue&) = delete;
    CommandQueue& operator=(const CommandQueue&) = delete;

    /// Queues a job; the command starts when all earlier ones have exited.
    void Add(Job job);

    bool IsIdle() const { return m_child == 0; }

    /// Discards all jobs that have not been started.
    void Drop() { m_waiting.clear(); }

    /// Discards all pending jobs and sends @p signal to the process group of the running command. Later calls send
    /// SIGKILL.
    void Stop(int signal);

private:
    static void OnEnded(GPid, gint status, gpointer data);
    bool Start(const Job& job);
    void StartNext();

    std::string m_command;
    std::function<void()> m_idle;
    std::function<void(const std::string&)> m_complain;
    std::deque<Job> m_waiting;
    GPid m_child = 0;
    bool m_stopped = false;
    guint m_watch = 0;
};

/// Returns the environment variable for a field: "IPOD_POSITION_MS" for "position_ms".
std::string VariableFor(const std::string& field);
}  // namespace ctl
