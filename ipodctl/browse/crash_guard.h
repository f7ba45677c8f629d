/// @file
/// Gives the terminal back also when the program is ended by its own mistake.
#pragma once

#include <string_view>

namespace ctl::browse
{
/// Between construction and destruction, the signals that end a program for a mistake restore the modes that the
/// terminal had at construction, then do what they always do. Also when the stack of the thread that constructed it
/// overflows. One at a time.
class CrashGuard
{
public:
    CrashGuard();
    ~CrashGuard();
    CrashGuard(const CrashGuard&) = delete;
    CrashGuard& operator=(const CrashGuard&) = delete;

    /// What the terminal must be sent, known only once its type is.
    static void SendAtCrash(std::string_view text);
};
}  // namespace ctl::browse
