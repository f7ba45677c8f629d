/// @file
/// What the library logs. A failed call shows nowhere else: commands return bare values.
#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

namespace ctl
{
/// Logs a call that took this long, at level DEBUG; @p reason is null unless it failed.
void LogCall(const std::string& call, std::chrono::microseconds taken, const char* reason);

/// Sets the library's logging up, into memory of this process, and reads it back.
class LibraryLog
{
public:
    /// @param verbose  everything is logged and passed on to standard error. Otherwise the environment variable QBX_LOG
    ///                 chooses level and file; without it, failures are logged and not passed on.
    explicit LibraryLog(bool verbose);
    ~LibraryLog();
    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;

    /// Whether failures can be seen. False where the head unit's own logging cannot be read, or where QBX_LOG names a
    /// zlog configuration or a level that leaves failures out.
    bool readable() const { return m_readable; }

    /// The bus's reason for the first call that failed since the last time; empty when none did.
    std::string TakeFailure();

private:
    std::string TakeText();

    int m_memory;
    bool m_readable;
    std::unique_ptr<FILE, int (*)(FILE*)> m_passedTo;
};
}  // namespace ctl
