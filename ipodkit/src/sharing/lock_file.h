/// @file
/// Advisory locks on the file of a segment. Its bytes are neither read nor written.
#pragma once

#include <sys/types.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ipodkit
{
enum class Hold
{
    Shared,
    Exclusive,
};

/// An open file description of a segment. Its locks conflict with those of every other description, even in the same
/// process. The kernel drops them when the process ends. Any thread; nothing blocks.
class LockFile
{
public:
    /// Returns null if the segment does not exist or cannot be opened.
    static std::shared_ptr<LockFile> Open(const char* segment);

    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    const std::string& Segment() const { return m_segment; }

    /// Returns whether the file still has a name. If it was removed or replaced, other applications do not see its
    /// locks.
    bool HasName() const;

    /// Locks a byte. Returns false if another description holds a conflicting lock. Returns true if the kernel does not
    /// support such locks: reads are then unguarded.
    bool Lock(Hold how, off_t byte) const;

    /// Returns whether another description holds a lock in the range.
    bool AnyIn(off_t first, off_t count) const;

    void Unlock(off_t first, off_t count) const;

    /// Drops all locks.
    void Unlock() const { Unlock(0, 0); }

private:
    LockFile(const char* segment, int fd) : m_segment(segment), m_fd(fd) {}

    const std::string m_segment;
    const int m_fd;
};

using LockFilePtr = std::shared_ptr<LockFile>;

/// A pool of open files without locks, so that reading a page does not open a file. Any thread.
class IdleLockFiles
{
public:
    /// Returns an idle file, or opens one; null if LockFile::Open() fails.
    LockFilePtr Take(const char* segment);

    /// Returns a file to the pool. It must hold no locks.
    void Keep(LockFilePtr file);

private:
    std::mutex m_mutex;
    std::vector<LockFilePtr> m_idle;
};
}  // namespace ipodkit
