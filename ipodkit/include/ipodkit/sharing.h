/// @file
/// Sharing the device's lists with other applications that use the kit. docs/sharing.md describes the locks.
///
///     BrowseLease::Acquire(session).Start([&](Result<BrowseLease> lease) { … });
///
/// **Pages.** A pager locks a list in shared memory from its request to the end of the copy, and the level of the
/// database while it reads or changes it. It waits for another application at most two seconds, or three quarters of
/// the session's deadline if that is less; then the request completes with ErrorKind::Busy, and the reason names the
/// process that holds the lock.
///
/// **Levels.** All applications share one level of the database. While an application browses, it should hold a
/// BrowseLease: without it, another one may change the level between two requests. Commands are not guarded: use the
/// pager's EnterRoot(), EnterParent(), and EnterChild(), or hold the lease.
///
/// Locks are advisory. Applications that use the core alone neither hold nor respect them.
#pragma once

#include <ipodkit/session.h>
#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// What the holder of a BrowseLease does with the level.
enum class Browsing
{
    Reading,   ///< the level stays as it is; any number of applications may read at a time
    Changing,  ///< no other application changes the level; others may read it between two changes
};

/// The right to browse the database, until the last copy is destroyed. Copies share it, and so do the session's other
/// leases of the same kind. It may outlive the session, may be destroyed on any thread, and ends with the process. If a
/// service replaces the segment, the next request of a pager obtains the lease again, or completes with
/// ErrorKind::Busy.
class BrowseLease
{
public:
    /// Obtains the lease. Fails with ErrorKind::Busy if another process holds it and does not release it within the
    /// time described above. A process that holds a lease for Changing holds one for Reading as well. The reverse is
    /// not true: Reading delays every change, including the holder's own.
    static Request<BrowseLease> Acquire(Session& session, Browsing how = Browsing::Changing);

    /// For the kit's own classes only.
    explicit BrowseLease(std::shared_ptr<void> held) : m_held(std::move(held)) {}

private:
    std::shared_ptr<void> m_held;
};

/// A process that holds a lock.
struct LockHolder
{
    std::string what;     ///< name of the vector in the bus contract, "level", or "browse"
    pid_t process;        ///< its process ID
    std::string program;  ///< its name in /proc; empty if it has ended
};

/// Returns the holders of the locks; processes of other users are omitted. Reads /proc, which blocks for milliseconds.
/// Any thread; requires no session.
std::vector<LockHolder> LockHolders();
}  // namespace ipodkit

#pragma GCC visibility pop
