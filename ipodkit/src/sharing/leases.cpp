#include "sharing/leases.h"

#include <algorithm>
#include <utility>

#include "loop/context.h"
#include "sharing/holder.h"

namespace ipodkit
{
namespace
{
using std::chrono::milliseconds;

// In milliseconds. An application that has waited for so long is about to give up or was stopped: older tickets are
// ignored.
constexpr off_t kOldest = 2500;
constexpr milliseconds kLongestPoll(10);
constexpr guint kKeptMilliseconds = 20;

off_t Now()
{
    return static_cast<off_t>(g_get_monotonic_time() / 1000 % kTickets);
}

const char* UseOf(Place place)
{
    switch (place)
    {
        case Place::Browse:
            return " browses the database";
        case Place::Level:
            return " reads or changes the level of the database";
        default:
            return " reads the list";
    }
}
}  // namespace

void HeldLock::End()
{
    if (m_file == nullptr) return;
    m_file->Unlock();
    m_idle->Keep(std::move(m_file));
    m_file = nullptr;
}

struct Leases::Waiter
{
    Place place;
    Hold how;
    Done<HeldLock> done;
    LockFilePtr file{};
    gint64 since = g_get_monotonic_time();
    off_t ticket = -1;  // -1 until it has to wait
    SourcePtr timer{};

    milliseconds Waited() const { return milliseconds((g_get_monotonic_time() - since) / 1000); }

    // Another application may have begun to wait in the same millisecond.
    void Queue()
    {
        for (ticket = Now(); !file->Lock(Hold::Exclusive, FirstTicketOf(place) + ticket);)
            ticket = (ticket + 1) % kTickets;
    }

    bool IsFirst() const
    {
        const off_t mine = ticket >= 0 ? ticket : Now();
        const off_t oldest = std::max<off_t>(0, mine - kOldest);
        return mine == 0 || !file->AnyIn(FirstTicketOf(place) + oldest, mine - oldest);
    }
};

Leases::Leases(GMainContext* context, milliseconds patience)
    : m_context(g_main_context_ref(context)), m_patience(patience), m_random(std::random_device{}())
{
}

void Leases::Take(Place place, Hold how, Done<HeldLock> done)
{
    if (m_ignored) return done(std::make_shared<HeldLock>(nullptr, m_idle));
    Waiter request{place, how, std::move(done)};
    if (Try(request)) return request.done(HeldBy(request));
    const auto waiter = std::make_shared<Waiter>(std::move(request));
    m_waiting.insert(waiter);
    PollLater(waiter);
}

HeldLockPtr Leases::HeldBy(Waiter& waiter) const
{
    return std::make_shared<HeldLock>(std::move(waiter.file), m_idle);
}

// Returns true if there is nothing to lock, too. The file may have been replaced at any time before it was locked.
bool Leases::Try(Waiter& waiter)
{
    if (waiter.file == nullptr) waiter.file = m_idle->Take();
    while (waiter.file != nullptr)
    {
        const bool locked = LockWhenFirst(waiter);
        if (waiter.file->HasName()) return locked;
        waiter.ticket = -1;
        waiter.file = LockFile::Open();
    }
    return true;
}

bool Leases::LockWhenFirst(Waiter& waiter)
{
    const LockFile& file = *waiter.file;
    const bool locked = IsFirst(waiter) && file.Lock(waiter.how, LockOf(waiter.place));
    if (locked && waiter.ticket >= 0) file.Unlock(FirstTicketOf(waiter.place), kTickets);
    if (!locked && waiter.ticket < 0) waiter.Queue();
    return locked;
}

bool Leases::IsFirst(const Waiter& waiter)
{
    if (waiter.ticket >= 0) return waiter.IsFirst();
    CheckedLately& nobodyWaits = m_nobodyWaits[static_cast<std::size_t>(waiter.place)];
    return nobodyWaits.Holds([&] { return waiter.IsFirst(); });
}

// Retries less often the longer it has waited, with random delays so that no two processes stay in step.
void Leases::PollLater(const WaiterPtr& waiter)
{
    const auto most = std::clamp(waiter->Waited() / 8, milliseconds(2), kLongestPoll).count();
    const auto delay = 1 + m_random() % static_cast<unsigned>(most);
    waiter->timer = After(m_context.get(), static_cast<guint>(delay),
                          [weak = weak_from_this(), waiting = std::weak_ptr(waiter)]
                          {
                              const auto self = weak.lock();
                              const auto again = waiting.lock();
                              if (self != nullptr && again != nullptr) self->Poll(again);
                          });
}

void Leases::Poll(const WaiterPtr& waiter)
{
    if (Try(*waiter))
    {
        m_waiting.erase(waiter);
        return waiter->done(HeldBy(*waiter));
    }
    if (waiter->Waited() < m_patience) return PollLater(waiter);
    GiveUp(waiter);
}

// Finds the holder on another thread, because that reads all of /proc.
void Leases::GiveUp(const WaiterPtr& waiter)
{
    waiter->file.reset();
    const auto found = [weak = weak_from_this(), waiting = std::weak_ptr(waiter)](const std::string& holder)
    {
        const auto self = weak.lock();
        const auto late = waiting.lock();
        if (self == nullptr || late == nullptr) return;
        self->m_waiting.erase(late);
        late->done(tl::unexpected(Error{ErrorKind::Busy, holder + UseOf(late->place)}));
    };
    const std::shared_ptr<GMainContext> context(g_main_context_ref(m_context.get()), g_main_context_unref);
    RunAside([found, context, place = waiter->place]
             { Post(context.get(), [found, holder = HolderOf(place)] { found(holder); }); });
}

// Concurrent reads share one lock. The holder of the change lease may read without it.
void Leases::TakeForReading(Done<void> done)
{
    if (!m_changing.expired()) return TakeForChanges([done = std::move(done)](const auto& lease) { done(lease); });
    for (const HeldLockPtr& held : {m_together.lock(), m_reading.lock()})
        if (held != nullptr && held->IsEffective()) return done(held);
    Take(Place::Level, Hold::Shared,
         [weak = weak_from_this(), done = std::move(done)](const Result<HeldLockPtr>& lock)
         {
             const auto self = weak.lock();
             if (self != nullptr && lock && (*lock)->IsEffective()) self->KeepReading(*lock);
             done(lock);
         });
}

// A new lock for the later reads would wait behind a change that waits for the earlier ones.
void Leases::TakeForReads(Done<void> done)
{
    TakeForReading(
        [weak = weak_from_this(), done = std::move(done)](const Result<std::shared_ptr<void>>& lock)
        {
            const auto self = weak.lock();
            const bool first = self != nullptr && lock && self->m_together.expired();
            if (first) self->m_together = self->m_reading;
            done(lock);
        });
}

// A list is usually read page after page, so the lock is kept for a moment. Later reads lock again, so that
// applications that wait to change the level get their turn.
void Leases::KeepReading(const HeldLockPtr& lock)
{
    m_reading = m_kept = lock;
    m_keeping = After(m_context.get(), kKeptMilliseconds,
                      [weak = weak_from_this()]
                      {
                          if (const auto self = weak.lock()) self->ForgetReading();
                      });
}

void Leases::ForgetReading()
{
    m_reading.reset();
    m_kept.reset();
    m_keeping.reset();
}

void Leases::TakeForChange(Done<void> done)
{
    TakeForChanges(
        [weak = weak_from_this(), done = std::move(done)](const Result<std::shared_ptr<ChangeLease>>& lease)
        {
            const auto self = weak.lock();
            if (!lease || self == nullptr) return done(lease);
            self->ForgetReading();
            self->Take(Place::Level, Hold::Exclusive,
                       [done, lease = *lease](const Result<HeldLockPtr>& level)
                       {
                           if (!level) return done(level);
                           using Both = std::pair<std::shared_ptr<ChangeLease>, HeldLockPtr>;
                           done(std::shared_ptr<void>(std::make_shared<Both>(lease, *level)));
                       });
        });
}

// Concurrent requests share one lease: to the kernel, two locks of one process conflict.
void Leases::TakeForChanges(Done<ChangeLease> done)
{
    const auto lease = m_changing.lock();
    if (lease != nullptr && lease->lock->IsEffective()) return done(lease);
    m_wanted.push_back(std::move(done));
    if (m_wanted.size() > 1) return;
    Take(Place::Browse, Hold::Exclusive,
         [weak = weak_from_this()](const Result<HeldLockPtr>& lock)
         {
             if (const auto self = weak.lock()) self->BrowseTaken(lock);
         });
}

void Leases::BrowseTaken(const Result<HeldLockPtr>& lock)
{
    const auto self = shared_from_this();
    const Result<std::shared_ptr<ChangeLease>> lease = lock.map(
        [this](const HeldLockPtr& taken)
        {
            auto kept = m_changing.lock();
            if (kept == nullptr) m_changing = kept = std::make_shared<ChangeLease>();
            kept->lock = taken;
            return kept;
        });
    for (const Done<ChangeLease>& done : std::exchange(m_wanted, {})) done(lease);
}
}  // namespace ipodkit
