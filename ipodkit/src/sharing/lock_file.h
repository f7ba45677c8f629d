/// @file
/// Advisory locks on the file of the locked segment. Its bytes are neither read nor written.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

namespace ipodkit
{
enum class Hold
{
    Shared,
    Exclusive,
};

/// Remembers for 5 ms that a condition held. Checking one is a system call, and pages follow each other within 0.1 ms.
class CheckedLately
{
public:
    template <class Check>
    bool Holds(const Check& check)
    {
        using std::chrono::milliseconds;
        const auto now = std::chrono::steady_clock::now();
        if (m_until > now) return true;
        const bool holds = check();
        if (holds) m_until = now + milliseconds(5);
        return holds;
    }

private:
    std::chrono::steady_clock::time_point m_until;
};

/// An open file description of the locked segment. Its locks conflict with those of every other description, even in
/// the same process. The kernel drops them when the process ends. Any thread, one at a time; nothing blocks.
class LockFile
{
public:
    /// Returns null if the segment does not exist or cannot be opened.
    static std::shared_ptr<LockFile> Open();

    /// Takes ownership of a descriptor of the segment.
    explicit LockFile(int fd) : m_fd(fd) {}
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /// Returns whether the file had a name within the last 5 ms. If it was removed or replaced, other applications do
    /// not see its locks.
    bool HasName();

    /// Locks a byte. Returns false if another description holds a conflicting lock. Returns true if the kernel does not
    /// support such locks: reads are then unguarded.
    bool Lock(Hold how, off_t byte) const;

    /// Returns whether another description holds a lock in the range.
    bool AnyIn(off_t first, off_t count) const;

    void Unlock(off_t first, off_t count) const;

    /// Drops all locks.
    void Unlock() const { Unlock(0, 0); }

private:
    const int m_fd;
    CheckedLately m_named;
};

using LockFilePtr = std::shared_ptr<LockFile>;

/// A pool of open files without locks, so that reading a page does not open a file. Any thread.
class IdleLockFiles
{
public:
    /// Returns an idle file, or opens one; null if LockFile::Open() fails.
    LockFilePtr Take();

    /// Returns a file to the pool. It must hold no locks.
    void Keep(LockFilePtr file);

private:
    std::mutex m_mutex;
    std::vector<LockFilePtr> m_idle;
};
}  // namespace ipodkit
