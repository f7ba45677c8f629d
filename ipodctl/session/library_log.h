/// @file
/// What the library logs. A failed call shows nowhere else: commands return bare values.
#pragma once

#include <string>

namespace ctl
{
/// Sets the library's logging up, into memory of this process, and reads it back.
class LibraryLog
{
public:
    /// @param verbose  everything is logged and passed on to standard error; otherwise failures only
    explicit LibraryLog(bool verbose);
    ~LibraryLog();
    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;

    /// Whether failures can be seen. False where the unit's own logging does not let itself be read.
    bool readable() const { return m_readable; }

    /// The bus's reason for the first call that failed since the last time; empty when none did.
    std::string TakeFailure();

private:
    std::string TakeText();

    int m_memory;
    bool m_verbose;
    bool m_readable;
};
}  // namespace ctl
