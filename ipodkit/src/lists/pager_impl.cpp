#include "lists/pager_impl.h"

#include <algorithm>
#include <utility>

namespace ipodkit
{
namespace
{
constexpr char kNoSize[] = "the service does not report the size of this list";

// Requests that wait for a call reach their deadlines before the call reaches its own.
constexpr std::chrono::milliseconds kSlack(100);

tl::unexpected<Error> WrongSize(std::size_t got, std::size_t wanted)
{
    return tl::unexpected(Error{
        ErrorKind::BadReply, "expected a page of " + std::to_string(wanted) + " entries, got " + std::to_string(got) +
                                 "; another application may have read a list at the same time, try again"});
}

std::optional<Error> OutOfRange(const PagerOptions& options)
{
    if (options.pageSize < 1)
        return Error{ErrorKind::BadArgument, "pageSize: expected at least 1, got " + std::to_string(options.pageSize)};
    if (options.prefetch < 0)
        return Error{ErrorKind::BadArgument, "prefetch: expected at least 0, got " + std::to_string(options.prefetch)};
    return std::nullopt;
}
}  // namespace

template <class T>
bool PageFetch<T>::Wanted() const
{
    return ahead ||
           std::any_of(waiters.begin(), waiters.end(), [](const auto& waiter) { return waiter.request->Open(); });
}

template <class T>
void PageFetch<T>::Arrived(const Result<T>& result) const
{
    for (const PageWaiter<T>& waiter : waiters)
        if (waiter.request->Open()) waiter.arrived(result);
}

Error Pager::Impl::NoSuchEntry(int index)
{
    return {ErrorKind::BadArgument, "entry " + std::to_string(index) + " does not exist"};
}

Pager::Impl::Impl(std::shared_ptr<Session::Impl> session, ListKind kind, const PagerOptions& options)
    : m_session(std::move(session)),
      m_kind(kind),
      m_options(options),
      m_unusable(OutOfRange(options)),
      m_queue(m_session->Queues().Of(kind)),
      m_reads(RequestGroup::Make(m_session->Bus()->Home())),
      m_changes(RequestGroup::Make(m_session->Bus()->Home())),
      m_cache(options.cachedPages)
{
    m_options.pageSize = std::max(m_options.pageSize, 1);
}

void Pager::Impl::Watch()
{
    m_watch = OnOutdated("pager",
                         [weak = weak_from_this()]
                         {
                             if (const auto self = weak.lock()) self->Refresh();
                         });
    m_ending = Subscription(m_session->Endings().Add("pager",
                                                     [weak = weak_from_this()]
                                                     {
                                                         if (const auto self = weak.lock())
                                                             self->End(detail::kSessionEnded);
                                                     }));
}

void Pager::Impl::Refresh()
{
    Forget({ErrorKind::Cancelled, "the list was replaced while it was being read"});
}

void Pager::Impl::End()
{
    End({ErrorKind::Cancelled, "the pager ended"});
}

void Pager::Impl::End(const Error& error)
{
    const auto self = shared_from_this();
    m_watch.Reset();
    m_ending.Reset();
    Forget(error);
    m_reads->Close(error);
    m_changes->Close(error);
}

Subscription Pager::Impl::OnOutdated(std::string name, std::function<void()> callback)
{
    return Subscription(m_queue->Watchers().Add(std::move(name), std::move(callback)));
}

// Callbacks may make requests meanwhile, and destroy the pager.
void Pager::Impl::Forget(const Error& error)
{
    const auto self = shared_from_this();
    ++m_round;
    m_cache.Clear();
    m_count.reset();
    m_counting.reset();
    m_pages.clear();
    m_reads->FailBegun(error);
}

// Drops an answer that belongs to discarded state or to a list that has been replaced: the requests that waited for it
// have completed.
template <class T>
void Pager::Impl::InTurn(Request<T> request, Locking lock, std::function<bool()> wanted, Arrived<T> arrived)
{
    const auto held = std::make_shared<Request<T>>(std::move(request));
    const auto current = [weak = weak_from_this(), epoch = m_queue->Epoch(), round = m_round]
    {
        const auto self = weak.lock();
        return self != nullptr && self->m_queue->Epoch() == epoch && self->m_round == round ? self : nullptr;
    };
    const auto send = [=](const Result<LocksPtr>& locks, const SerialQueue::Release& release)
    {
        const auto self = current();
        if (self == nullptr || !wanted()) return release();
        const auto done = [=](const Result<T>& result)
        {
            if (const auto alive = current()) arrived(result, locks.value_or(nullptr));
            release();
        };
        if (!locks) return done(tl::unexpected(locks.error()));
        self->m_session->StartWithService(std::move(*held), done);
    };
    m_queue->Wait(
        [=](const SerialQueue::Release& release)
        {
            const auto self = current();
            if (self == nullptr || !wanted()) return release();
            lock(*self, [=](const Result<LocksPtr>& locks) { send(locks, release); });
        });
}

void Pager::Impl::Locks::Release()
{
    level.reset();
    if (vector != nullptr) vector->End();
}

// Locks the level first, then the vector: one order everywhere prevents deadlocks between applications.
void Pager::Impl::LockPage(Locked locked)
{
    const auto& leases = m_session->SharedLeases();
    if (leases->Ignored()) return locked(LocksPtr());
    auto lockVector = [leases, place = PlaceOf(m_kind),
                       locked = std::move(locked)](const Result<std::shared_ptr<void>>& level) mutable
    {
        if (!level) return locked(tl::unexpected(level.error()));
        leases->Take(place, Hold::Exclusive,
                     [level = *level, locked = std::move(locked)](const Result<HeldLockPtr>& vector) {
                         locked(vector.map(
                             [&](const HeldLockPtr& held) {
                                 return std::make_shared<Locks>(Locks{level, held});
                             }));
                     });
    };
    HasLevel() ? leases->TakeForReading(std::move(lockVector)) : lockVector(std::shared_ptr<void>());
}

// A call is not withdrawn with the request: until its answer, the service may still fill the shared list.
std::chrono::milliseconds Pager::Impl::CallDeadline(const OpenRequest* request) const
{
    const std::chrono::milliseconds usual = m_session->Options().deadline;
    const auto given = request != nullptr ? request->Terms().deadline : std::nullopt;
    return detail::Clamped(std::max(usual, given.value_or(usual))) + kSlack;
}

Request<int> Pager::Impl::AskForCount() const
{
    const Commands commands = m_session->MakeCommands();
    if (IsDatabase()) return commands.DatabaseCount();
    return m_kind == ListKind::Playing ? commands.PlayingCount() : commands.DeviceCount();
}

Request<int> Pager::Impl::Count()
{
    const auto begin = [](Impl& self, const PendingPtr<int>& request)
    {
        if (!self.HasCount()) return request->Settle(tl::unexpected(Error{ErrorKind::BadArgument, kNoSize}));
        self.CountWanted({request, [request](const Result<int>& count) { request->Settle(count); }});
    };
    return Reading<int>("pager count", {m_session->Options().deadline, std::nullopt}, begin);
}

void Pager::Impl::CountWanted(PageWaiter<int> waiter)
{
    if (m_count) return waiter.arrived(*m_count);
    const bool fresh = !m_counting || !m_counting->Wanted();
    if (fresh) m_counting = PageFetch<int>();
    m_counting->waiters.push_back(std::move(waiter));
    if (!fresh) return;
    InTurn<int>(
        AskForCount().Within(CallDeadline(m_counting->waiters.front().request.get())),
        [](Impl&, const auto& unlocked) { unlocked(nullptr); }, [this] { return m_counting && m_counting->Wanted(); },
        [this](const Result<int>& count, const LocksPtr&) { CountArrived(count); });
}

void Pager::Impl::CountArrived(const Result<int>& count)
{
    if (count) m_count = *count;
    const auto counting = std::exchange(m_counting, std::nullopt);
    if (counting) counting->Arrived(count);
}

Request<PagePtr> Pager::Impl::At(int index)
{
    const auto begin = [index](Impl& self, const PendingPtr<PagePtr>& request) {
        self.EntryWanted(index, {request, [request](const Result<PagePtr>& page) { request->Settle(page); }});
    };
    return Reading<PagePtr>("pager page", {m_session->Options().deadline, std::nullopt}, begin);
}

// The size comes first: it determines how long a page must be.
void Pager::Impl::EntryWanted(int index, PageWaiter<PagePtr> waiter)
{
    if (index < 0) return waiter.arrived(tl::unexpected(NoSuchEntry(index)));
    if (!HasCount()) return EntryWantedWithoutCount(index, waiter);
    if (m_count) return PageWanted(index, std::move(waiter));
    CountWanted({waiter.request, [this, index, waiter](const Result<int>& count)
                 { count ? PageWanted(index, waiter) : waiter.arrived(tl::unexpected(count.error())); }});
}

// In a list without a reported size, a page that is not full marks the end. The first page is requested first: beyond
// the end some services refuse, and some return the whole list regardless of the range.
void Pager::Impl::EntryWantedWithoutCount(int index, const PageWaiter<PagePtr>& waiter)
{
    const PageWaiter<PagePtr> checked{
        waiter.request, [index, arrived = waiter.arrived](const Result<PagePtr>& page)
        { arrived(page && !(*page)->Holds(index) ? tl::unexpected(NoSuchEntry(index)) : page); }};
    if (NumberOf(index) == 0) return PageWanted(index, checked);
    PageWanted(0, {waiter.request, [this, index, checked](const Result<PagePtr>& first)
                   {
                       const bool full = first && (*first)->Holds(m_options.pageSize - 1);
                       return full ? PageWanted(index, checked) : checked.arrived(first);
                   }});
}

void Pager::Impl::PageWanted(int index, PageWaiter<PagePtr> waiter)
{
    if (m_count && index >= *m_count) return waiter.arrived(tl::unexpected(NoSuchEntry(index)));
    const int number = NumberOf(index);
    if (const PagePtr page = m_cache.Find(number))
    {
        Prefetch(number);
        return waiter.arrived(page);
    }
    const OpenRequestPtr request = waiter.request;
    const auto [fetch, fresh] = m_pages.try_emplace(number);
    fetch->second.waiters.push_back(std::move(waiter));
    if (fresh) FetchPage(number, request.get());
}

// The index may be beyond the end of a list of unknown size.
int Pager::Impl::LastOf(int number) const
{
    if (m_kind == ListKind::Devices) return m_count.value_or(0) - 1;
    const std::int64_t last = FirstOf(number) + m_options.pageSize - 1;
    return static_cast<int>(std::min<std::int64_t>(last, m_count ? *m_count - 1 : INT32_MAX));
}

PagePtr Pager::Impl::Cached(int index)
{
    const PagePtr page = index < 0 ? nullptr : m_cache.Find(NumberOf(index));
    return page != nullptr && page->Holds(index) ? page : nullptr;
}

// A page is not read if all its requests ended before its turn.
void Pager::Impl::FetchPage(int number, const OpenRequest* request)
{
    const auto wanted = [this, number]
    {
        const auto fetch = m_pages.find(number);
        if (fetch == m_pages.end() || fetch->second.Wanted()) return fetch != m_pages.end();
        m_pages.erase(fetch);
        return false;
    };
    InTurn<PageHead>(
        AskForPage(m_session->Bus(), CallDeadline(request), m_kind, static_cast<int>(FirstOf(number)), LastOf(number)),
        [](Impl& self, Locked locked) { self.LockPage(std::move(locked)); }, wanted,
        [this, number](const Result<PageHead>& head, const LocksPtr& locks) { PageArrived(number, head, locks); });
}

// A page of the wrong size shows that the size of the list was wrong too.
void Pager::Impl::PageArrived(int number, const Result<PageHead>& head, const LocksPtr& locks)
{
    const Result<PagePtr> page = head.and_then([&](const PageHead& arrived) { return MakePage(number, arrived); });
    if (locks != nullptr) locks->Release();
    if (page)
        m_cache.Put(number, *page);
    else if (page.error().kind == ErrorKind::BadReply)
        m_count.reset();
    const auto fetch = m_pages.extract(number);
    if (fetch.empty() || fetch.mapped().waiters.empty()) return;
    if (page) Prefetch(number);
    fetch.mapped().Arrived(page);
}

Result<PagePtr> Pager::Impl::MakePage(int number, const PageHead& head) const
{
    auto names = m_session->ListNames(m_kind);
    if (!names) return tl::unexpected(Error{ErrorKind::BadReply, "the shared list is damaged"});
    const auto wanted = static_cast<std::size_t>(LastOf(number) - FirstOf(number) + 1);
    const bool fits = HasCount() ? names->size() == wanted : names->size() <= wanted;
    if (!fits) return WrongSize(names->size(), wanted);
    return std::make_shared<const Page>(
        Page{static_cast<int>(FirstOf(number)), std::move(*names), head.folders, head.root});
}

// Prefetches in the direction of the last two requests. A later request may join.
void Pager::Impl::Prefetch(int number)
{
    const int step = number < m_lastNumber ? -1 : 1;
    m_lastNumber = number;
    if (!m_count) return;
    for (int ahead = 1; ahead <= m_options.prefetch; ++ahead)
    {
        const int next = number + step * ahead;
        const bool exists = next >= 0 && m_kind != ListKind::Devices && FirstOf(next) < *m_count;
        if (!exists || m_cache.Find(next) != nullptr || m_pages.count(next) != 0) continue;
        m_pages[next].ahead = true;
        FetchPage(next, nullptr);
    }
}

Request<void> Pager::Impl::Enter(std::function<Request<void>(const Commands&)> command)
{
    return MakeLoopRequest<void>(
        m_changes, "pager level", {m_session->Options().deadline, std::nullopt},
        [weak = weak_from_this(), command = std::move(command)](const PendingPtr<void>& request)
        {
            if (const auto self = weak.lock()) self->Change(request, command);
        });
}

// Outdates the lists at once, so that nothing of the old level is shown. A callback may then destroy the pager, which
// withdraws the command if it has not been sent yet. The lists become outdated again when the service has executed the
// command, even if this pager is gone, because other pagers may have read in between.
void Pager::Impl::Change(const PendingPtr<void>& request, const std::function<Request<void>(const Commands&)>& command)
{
    CatchUp();
    if (!IsDatabase()) return request->Settle(tl::unexpected(Error{ErrorKind::BadArgument, "this list has no levels"}));
    const auto self = shared_from_this();
    const auto call =
        std::make_shared<Request<void>>(command(m_session->MakeCommands()).Within(CallDeadline(request.get())));
    m_queue->Outdate(m_session->CallbackGuard());
    m_queue->Wait([request, call, session = m_session](const SerialQueue::Release& release)
                  { request->Open() ? SendChange(request, call, session, release) : release(); });
}

void Pager::Impl::SendChange(const PendingPtr<void>& request, const std::shared_ptr<Request<void>>& call,
                             const std::shared_ptr<Session::Impl>& session, const SerialQueue::Release& release)
{
    session->SharedLeases()->TakeForChange(
        [request, call, session, release](const Result<std::shared_ptr<void>>& right)
        {
            const auto held = std::make_shared<std::shared_ptr<void>>(right.value_or(nullptr));
            const auto done = [request, release, held](const Result<void>& result)
            {
                held->reset();
                release();
                request->Settle(result);
            };
            if (!right) return done(tl::unexpected(right.error()));
            request->Open() ? session->StartWithService(std::move(*call), done) : release();
        });
}
}  // namespace ipodkit
