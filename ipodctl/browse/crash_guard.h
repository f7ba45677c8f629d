/// @file
/// Restores the terminal if the program crashes.
#pragma once

#include <string_view>

namespace ctl::browse
{
/// While an instance exists, a crash signal (SIGSEGV, SIGABRT, …) restores the terminal modes saved at construction and
/// is then raised again with its previous action. Works on stack overflow of the constructing thread, too. At most one
/// instance may exist at a time.
class CrashGuard
{
public:
    CrashGuard();
    ~CrashGuard();
    CrashGuard(const CrashGuard&) = delete;
    CrashGuard& operator=(const CrashGuard&) = delete;

    /// Sets the bytes that reset the terminal, at most 256. They depend on its type, which is known only later.
    static void SetResetSequence(std::string_view text);
};
}  // namespace ctl::browse
