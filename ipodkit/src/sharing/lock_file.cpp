#include "sharing/lock_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace ipodkit
{
namespace
{
constexpr std::size_t kMostIdle = 4;

struct flock LockRange(short type, off_t first, off_t count)
{
    struct flock lock
    {
    };
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = first;
    lock.l_len = count;
    return lock;
}

// The C library widens the offsets of these commands on 32-bit systems.
bool SetLock(int fd, struct flock lock)
{
    return fcntl(fd, F_OFD_SETLK, &lock) == 0;
}

bool HeldByAnother(int reason)
{
    return reason == EAGAIN || reason == EACCES;
}
}  // namespace

std::shared_ptr<LockFile> LockFile::Open(const char* segment)
{
    const int fd = shm_open(segment, O_RDWR | O_NONBLOCK, 0);
    return fd < 0 ? nullptr : std::shared_ptr<LockFile>(new LockFile(segment, fd));
}

LockFile::~LockFile()
{
    close(m_fd);
}

bool LockFile::HasName() const
{
    struct stat now
    {
    };
    return fstat(m_fd, &now) == 0 && now.st_nlink > 0;
}

bool LockFile::Lock(Hold how, off_t byte) const
{
    return SetLock(m_fd, LockRange(how == Hold::Shared ? F_RDLCK : F_WRLCK, byte, 1)) || !HeldByAnother(errno);
}

bool LockFile::AnyIn(off_t first, off_t count) const
{
    struct flock lock = LockRange(F_WRLCK, first, count);
    return fcntl(m_fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

void LockFile::Unlock(off_t first, off_t count) const
{
    SetLock(m_fd, LockRange(F_UNLCK, first, count));
}

LockFilePtr IdleLockFiles::Take(const char* segment)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = std::find_if(m_idle.begin(), m_idle.end(),
                                        [segment](const LockFilePtr& file) { return file->Segment() == segment; });
        if (found != m_idle.end())
        {
            LockFilePtr file = *found;
            m_idle.erase(found);
            return file;
        }
    }
    return LockFile::Open(segment);
}

void IdleLockFiles::Keep(LockFilePtr file)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_idle.size() < kMostIdle) m_idle.push_back(std::move(file));
}
}  // namespace ipodkit
