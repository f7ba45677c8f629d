/// @file
/// Runs a command of the shell for one event after the other, while the main loop goes on.
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
        Json fields;        ///< become variables of the environment
        std::string input;  ///< standard input of the command
    };

    /// @param idle      called when the last one has ended
    /// @param complain  called with what went wrong
    CommandQueue(std::string command, std::function<void()> idle, std::function<void(const std::string&)> complain);
    ~CommandQueue();
    CommandQueue(const CommandQueue&) = delete;
    CommandQueue& operator=(const CommandQueue&) = delete;

    /// Runs the command when those before it have ended.
    void Add(Job job);

    bool IsIdle() const { return m_child == 0; }

    /// What has not been started never is.
    void Drop() { m_waiting.clear(); }

    /// The same, and the running one is sent a signal with all that it has started; a second time it is killed.
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

/// The name of a field's variable: "IPOD_POSITION_MS" for "position_ms".
std::string VariableFor(const std::string& field);
}  // namespace ctl
