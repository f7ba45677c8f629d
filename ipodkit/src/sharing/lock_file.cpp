#include "sharing/lock_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "sharing/place.h"

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

std::shared_ptr<LockFile> LockFile::Open()
{
    const int fd = shm_open(kLockedSegment, O_RDWR | O_NONBLOCK, 0);
    return fd < 0 ? nullptr : std::make_shared<LockFile>(fd);
}

LockFile::~LockFile()
{
    close(m_fd);
}

bool LockFile::HasName()
{
    const auto check = [this]
    {
        struct stat now
        {
        };
        return fstat(m_fd, &now) == 0 && now.st_nlink > 0;
    };
    return m_named.Holds(check);
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

LockFilePtr IdleLockFiles::Take()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_idle.empty())
        {
            LockFilePtr file = std::move(m_idle.back());
            m_idle.pop_back();
            return file;
        }
    }
    return LockFile::Open();
}

void IdleLockFiles::Keep(LockFilePtr file)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_idle.size() < kMostIdle) m_idle.push_back(std::move(file));
}
}  // namespace ipodkit
