/// @file
/// Locks that applications share, obtained without blocking.
#pragma once

#include <ipodkit/error.h>

#include <array>
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
/// Holds a lock until the object is destroyed or End() is called. Any thread.
class HeldLock
{
public:
    /// @param file  null if there is nothing to lock
    HeldLock(LockFilePtr file, std::shared_ptr<IdleLockFiles> idle) : m_file(std::move(file)), m_idle(std::move(idle))
    {
    }
    ~HeldLock() { End(); }
    HeldLock(const HeldLock&) = delete;
    HeldLock& operator=(const HeldLock&) = delete;

    void End();

    /// Returns whether the lock is effective: the segment has not been replaced since.
    bool IsEffective() const { return m_file != nullptr && m_file->HasName(); }

private:
    LockFilePtr m_file;
    const std::shared_ptr<IdleLockFiles> m_idle;
};

using HeldLockPtr = std::shared_ptr<HeldLock>;

/// The right to change the level. If the segment is replaced, the lock is obtained again.
struct ChangeLease
{
    HeldLockPtr lock;  ///< never null
};

/// Context thread only, except that locks and leases may be destroyed on any thread.
class Leases : public std::enable_shared_from_this<Leases>
{
public:
    template <class T>
    using Done = std::function<void(const Result<std::shared_ptr<T>>&)>;

    /// @param patience  how long to wait for other processes before ErrorKind::Busy
    Leases(GMainContext* context, std::chrono::milliseconds patience);

    /// Locks nothing from now on: for a session without a service, and to measure the cost of the locks.
    void Ignore(bool ignored = true) { m_ignored = ignored; }
    bool Ignored() const { return m_ignored; }

    /// Drops all waiting requests; their callbacks are never called.
    void Close()
    {
        m_waiting.clear();
        m_wanted.clear();
        ForgetReading();
    }

    /// Calls @p done once: inside the call if the place is free, with ErrorKind::Busy if it did not become free in
    /// time. Requests of all processes are served in the order in which they began to wait.
    void Take(Place place, Hold how, Done<HeldLock> done);

    /// Locks the level for a read.
    void TakeForReading(Done<void> done);

    /// Locks the level for reads that belong together: those that begin until the lock is dropped share it.
    void TakeForReads(Done<void> done);

    /// Locks the level for one change, including the change lease.
    void TakeForChange(Done<void> done);

    /// Obtains the change lease of the process, which all its holders share.
    void TakeForChanges(Done<ChangeLease> done);

private:
    struct Waiter;
    using WaiterPtr = std::shared_ptr<Waiter>;

    bool Try(Waiter& waiter);
    bool LockWhenFirst(Waiter& waiter);
    bool IsFirst(const Waiter& waiter);
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
    std::array<CheckedLately, kPlaces> m_nobodyWaits;  // in front of a new request
    std::set<WaiterPtr> m_waiting;
    std::weak_ptr<HeldLock> m_reading;   // shared by all reads
    std::weak_ptr<HeldLock> m_together;  // shared by reads that belong together
    HeldLockPtr m_kept;                  // keeps m_reading alive for the next read
    SourcePtr m_keeping;
    std::weak_ptr<ChangeLease> m_changing;
    std::vector<Done<ChangeLease>> m_wanted;  // while the lock of Place::Browse is awaited
    std::minstd_rand m_random;
    bool m_ignored = false;
};
}  // namespace ipodkit
