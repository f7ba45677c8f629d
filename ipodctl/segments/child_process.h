/// @file
/// Work that may hang or crash, in a process of its own.
#pragma once

#include <functional>
#include <string>

namespace ctl
{
struct ChildOutcome
{
    enum class End
    {
        Well,
        NotStarted,
        Hung,     ///< nothing came for some seconds, or too much
        Crashed,  ///< by a signal, or with a status of its own
    };
    End end;
    std::string text;  ///< what the work returned, when it ended well
};

/// Runs @p work in a child process. Call before the process has other threads.
ChildOutcome RunInChild(const std::function<std::string()>& work);
}  // namespace ctl
