/// @file
/// Locks that applications share, obtained without blocking.
#pragma once

#include <ipodkit/error.h>

#include <chrono>
#include <functional>
#include <memory>
#include <random>
#include <set>
#include <vector>

#include "loop/glib_ptr.h"
#include "sharing/lock_file.h"
#include "sharing/place.h"

namespace ipodkit
{
/// A lock, until the object is destroyed or End() is called. Any thread.
class HeldLock
{
public:
    /// @param file  null when there is nothing to lock
    HeldLock(LockFilePtr file, std::shared_ptr<IdleLockFiles> idle) : m_file(std::move(file)), m_idle(std::move(idle))
    {
    }
    ~HeldLock() { End(); }
    HeldLock(const HeldLock&) = delete;
    HeldLock& operator=(const HeldLock&) = delete;

    void End();

    /// Returns whether others would meet it: the segment was not replaced.
    bool Counts() const { return m_file != nullptr && m_file->HasName(); }

private:
    LockFilePtr m_file;
    const std::shared_ptr<IdleLockFiles> m_idle;
};

using HeldLockPtr = std::shared_ptr<HeldLock>;

/// The right to change the level; the lock is obtained again when the segment was replaced.
struct ChangeLease
{
    HeldLockPtr lock;  ///< never null
};

/// Context thread only, except for the destruction of what it gives out.
class Leases : public std::enable_shared_from_this<Leases>
{
public:
    template <class T>
    using Done = std::function<void(const Result<std::shared_ptr<T>>&)>;

    /// @param patience  how long to wait for others before ErrorKind::Busy
    Leases(GMainContext* context, std::chrono::milliseconds patience);

    /// Locks nothing from now on: for a session without a service.
    void Ignore() { m_ignored = true; }

    /// Forgets those who wait.
    void Close()
    {
        m_waiting.clear();
        m_wanted.clear();
        ForgetReading();
    }

    /// Calls @p done once, inside the call if the place is free. ErrorKind::Busy when it did not become free in time.
    /// Those who wait are served in the order in which they came, whatever their process.
    void Take(Place place, Hold how, Done<HeldLock> done);

    /// For a read of the database's level.
    void TakeForReading(Done<void> done);

    /// For reads that belong together: those that begin until the lock is dropped share it.
    void TakeForReads(Done<void> done);

    /// For a change of the level.
    void TakeForChange(Done<void> done);

    /// The lease that the process holds until it is dropped.
    void TakeForChanges(Done<ChangeLease> done);

private:
    struct Waiter;
    using WaiterPtr = std::shared_ptr<Waiter>;

    bool Try(Waiter& waiter);
    bool LockWhenFirst(Waiter& waiter) const;
    void Poll(const WaiterPtr& waiter);
    void PollLater(const WaiterPtr& waiter);
    void GiveUp(const WaiterPtr& waiter);
    HeldLockPtr HeldBy(Waiter& waiter) const;
    void KeepReading(const HeldLockPtr& lock);
    void ForgetReading();
    void BrowseTaken(const Result<HeldLockPtr>& lock);

    const ContextPtr m_context;
    const std::chrono::milliseconds m_patience;
    const std::shared_ptr<IdleLockFiles> m_idle = std::make_shared<IdleLockFiles>();
    std::set<WaiterPtr> m_waiting;
    std::weak_ptr<HeldLock> m_reading;   // what reads share
    std::weak_ptr<HeldLock> m_together;  // what they share for longer
    HeldLockPtr m_kept;                  // that of m_reading, for the next read
    SourcePtr m_keeping;
    std::weak_ptr<ChangeLease> m_changing;
    std::vector<Done<ChangeLease>> m_wanted;  // while Browse is being taken
    std::minstd_rand m_random;
    bool m_ignored = false;
};
}  // namespace ipodkit
