/// @file
/// A process at the other end, which the case may stop or kill at any moment.
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

    /// Kills it when it is still there.
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// The next line that it prints, empty at its end. Blocks.
    std::string ReadLine();

    /// Reads until a line comes; an expectation fails when the process ends before.
    void WaitFor(const std::string& line);

    void Send(const std::string& line);
    void Signal(int number);

    /// Suspends it with SIGSTOP; returns once it has stopped.
    void Stop();

    /// Kills it and waits until it is gone.
    void Kill();

    /// Waits for its end; the status of waitpid().
    int Wait();

private:
    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
};
}  // namespace faults
