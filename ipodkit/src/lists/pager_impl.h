/// @file
/// Implementation of a pager.
#pragma once

#include <ipodkit/pager.h>

#include <map>

#include "commands/requests.h"
#include "lists/page_cache.h"
#include "loop/loop_operation.h"
#include "session/list_queues.h"
#include "session/session_impl.h"

namespace ipodkit
{
/// A request, and the function that continues it with the result that it waits for.
template <class T>
struct PageWaiter
{
    OpenRequestPtr request;
    std::function<void(const Result<T>&)> arrived;
};

/// A page or a count that is being fetched, and the requests that wait for it.
template <class T>
struct PageFetch
{
    bool ahead = false;  // wanted though no request waits for it
    std::vector<PageWaiter<T>> waiters;

    bool Wanted() const;
    void Arrived(const Result<T>& result) const;
};

/// Context thread only, except for the functions that make requests.
class Pager::Impl : public std::enable_shared_from_this<Pager::Impl>
{
public:
    using Names = std::vector<std::string>;

    Impl(std::shared_ptr<Session::Impl> session, ListKind kind, const PagerOptions& options);

    void Watch();
    void End();

    /// Outdates the list if a blocking command has changed it meanwhile.
    void CatchUp() { m_session->Bus()->ReportFollowed(); }

    /// @name Any thread
    /// @{
    Request<int> Count();
    Request<PagePtr> At(int index);
    Request<Names> Range(int first, int last);
    Request<void> Enter(std::function<Request<void>(const Commands&)> command);
    /// @}

    PagePtr Cached(int index);
    void Refresh();
    Subscription OnOutdated(std::string name, std::function<void()> callback);

private:
    /// The locks that are held while a page is read.
    struct Locks
    {
        std::shared_ptr<void> level;
        HeldLockPtr vector;

        void Release();
    };
    using LocksPtr = std::shared_ptr<Locks>;
    using Locked = std::function<void(const Result<LocksPtr>&)>;  // called once
    using Locking = std::function<void(Pager::Impl&, Locked)>;
    template <class T>
    using Arrived = std::function<void(const Result<T>&, const LocksPtr&)>;

    struct Walk;
    using WalkPtr = std::shared_ptr<Walk>;

    bool IsDatabase() const { return m_kind == ListKind::Database || m_kind == ListKind::DatabasePinyin; }
    bool HasLevel() const { return m_kind != ListKind::Playing && m_kind != ListKind::Devices; }
    bool HasCount() const { return m_kind != ListKind::Update && m_kind != ListKind::UpdatePinyin; }
    int NumberOf(int index) const { return m_kind == ListKind::Devices ? 0 : index / m_options.pageSize; }
    std::int64_t FirstOf(int number) const { return std::int64_t{number} * m_options.pageSize; }
    int LastOf(int number) const;
    static Error NoSuchEntry(int index);
    std::chrono::milliseconds CallDeadline(const OpenRequest* request) const;
    Request<int> AskForCount() const;
    void Forget(const Error& error);
    void End(const Error& error);
    void CountWanted(PageWaiter<int> waiter);
    void CountArrived(const Result<int>& count);
    void EntryWanted(int index, PageWaiter<PagePtr> waiter);
    void EntryWantedWithoutCount(int index, const PageWaiter<PagePtr>& waiter);
    void PageWanted(int index, PageWaiter<PagePtr> waiter);
    void FetchPage(int number, const OpenRequest* request);
    void LockPage(Locked locked);
    void PageArrived(int number, const Result<PageHead>& head, const LocksPtr& locks);
    Result<PagePtr> MakePage(int number, const PageHead& head) const;
    void Prefetch(int number);
    void LockWalk(const WalkPtr& walk);
    void BeginWalk(const WalkPtr& walk);
    void WalkOn(const WalkPtr& walk);
    void Walked(const WalkPtr& walk, const Result<PagePtr>& page);
    void Change(const PendingPtr<void>& request, const std::function<Request<void>(const Commands&)>& command);
    static void SendChange(const PendingPtr<void>& request, const std::shared_ptr<Request<void>>& call,
                           const std::shared_ptr<Session::Impl>& session, const SerialQueue::Release& release);

    template <class T>
    Request<T> Reading(const char* name, detail::Terms terms, std::function<void(Impl&, const PendingPtr<T>&)> begin);
    template <class T>
    void InTurn(Request<T> request, Locking lock, std::function<bool()> wanted, Arrived<T> arrived);

    const std::shared_ptr<Session::Impl> m_session;
    const ListKind m_kind;
    PagerOptions m_options;
    const std::optional<Error> m_unusable;  // why the options are
    const std::shared_ptr<SerialQueue> m_queue;
    const std::shared_ptr<RequestGroup> m_reads;
    const std::shared_ptr<RequestGroup> m_changes;  // of level
    PageCache m_cache;
    Subscription m_watch;
    Subscription m_ending;
    std::uint64_t m_round = 0;  // grows whenever all is forgotten
    std::optional<int> m_count;
    std::optional<PageFetch<int>> m_counting;
    std::map<int, PageFetch<PagePtr>> m_pages;  // that are being fetched
    int m_lastNumber = 0;
};

template <class T>
Request<T> Pager::Impl::Reading(const char* name, detail::Terms terms,
                                std::function<void(Impl&, const PendingPtr<T>&)> begin)
{
    return MakeLoopRequest<T>(m_reads, name, std::move(terms),
                              [weak = weak_from_this(), begin = std::move(begin)](const PendingPtr<T>& request)
                              {
                                  const auto self = weak.lock();
                                  if (self == nullptr) return;
                                  self->CatchUp();
                                  if (!request->Open()) return;
                                  if (self->m_unusable) return request->Settle(tl::unexpected(*self->m_unusable));
                                  begin(*self, request);
                              });
}
}  // namespace ipodkit
