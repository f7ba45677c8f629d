/// @file
/// Runs work that may hang or crash in a child process.
#pragma once

#include <functional>
#include <string>

namespace ipodkit
{
struct ChildOutcome
{
    enum class End
    {
        Well,
        NotStarted,
        Hung,     ///< silent for 3 seconds, or wrote more than 64 MiB
        Crashed,  ///< killed by a signal, or exited with a nonzero status
    };
    End end;
    std::string text;  ///< return value of the work; empty unless it ended Well
};

/// Runs @p work in a forked child process and blocks until the child ends. A hung child is killed. Call before the
/// process starts other threads.
ChildOutcome RunInChild(const std::function<std::string()>& work);
}  // namespace ipodkit
