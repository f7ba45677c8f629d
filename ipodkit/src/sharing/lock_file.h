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

/// An open file description of a segment: its locks conflict with those of every other one, also in this process. The
/// kernel drops them when the process ends. Any thread; nothing blocks.
class LockFile
{
public:
    /// Null when the segment does not exist or cannot be opened.
    static std::shared_ptr<LockFile> Open(const char* segment);

    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    const std::string& Segment() const { return m_segment; }

    /// Returns whether it still has a name, under which others open it. A lock on a removed or replaced file does not
    /// count.
    bool HasName() const;

    /// Returns whether the byte is locked now. True also where the kernel has no such locks: readers then go unguarded.
    bool Lock(Hold how, off_t byte) const;

    /// Returns whether another open file description holds a lock in the range.
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

/// Open files without locks, so that a page does not open one. Any thread.
class IdleLockFiles
{
public:
    /// Returns one that is idle, or a new one; null as LockFile::Open().
    LockFilePtr Take(const char* segment);

    /// Keeps the file, which has no locks.
    void Keep(LockFilePtr file);

private:
    std::mutex m_mutex;
    std::vector<LockFilePtr> m_idle;
};
}  // namespace ipodkit
