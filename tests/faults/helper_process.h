/// @file
/// A peer process that the case may stop or kill at any moment.
#pragma once

#include <sys/types.h>
#include <string>
#include <vector>

namespace faults
{
class HelperProcess
{
public:
    /// Starts a program with pipes to its standard input and output.
    explicit HelperProcess(const std::vector<std::string>& command);

    /// Starts a helper of this program.
    static std::vector<std::string> Own(std::vector<std::string> arguments);

    /// Kills the process if it is still running.
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// Returns the next line of its output; empty at end of file. Blocks.
    std::string ReadLine();

    /// Reads until @p line arrives; an expectation fails if the process ends first.
    void WaitFor(const std::string& line);

    void Send(const std::string& line);
    void Signal(int number);

    /// Suspends it with SIGSTOP; returns once it has stopped.
    void Stop();

    /// Kills the process and waits until it has ended.
    void Kill();

    /// Waits for its end; returns the status of waitpid().
    int Wait();

private:
    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
};
}  // namespace faults
