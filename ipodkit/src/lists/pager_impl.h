/// @file
/// The inside of a pager.
#pragma once

#include <ipodkit/pager.h>

#include <map>

#include "commands/requests.h"
#include "lists/answers.h"
#include "lists/page_cache.h"
#include "session/lanes.h"
#include "session/session_impl.h"

namespace ipodkit
{
/// Context thread only. Each completion stands in m_counts, m_pages or m_changes until its answer is known, and in
/// m_answers until it is told; the pager's end finds it there.
class Pager::Impl : public std::enable_shared_from_this<Pager::Impl>
{
public:
    Impl(std::shared_ptr<Session::Impl> session, ListKind kind, const PagerOptions& options);

    void Watch();
    void End();

    /// Outdates the list if a blocking command that was made meanwhile has changed it.
    void CatchUp() { m_session->Bus()->ReportFollowed(); }

    void Count(CountCompletion completion);
    void At(int index, PageCompletion completion);
    PagePtr Cached(int index);
    void Enter(Request<void> request, Completion completion);
    void Refresh();
    Subscription OnOutdated(std::string name, std::function<void()> callback);
    Commands Ask() const { return m_session->MakeCommands(); }

private:
    bool IsDatabase() const { return m_kind == ListKind::Database || m_kind == ListKind::DatabasePinyin; }
    bool HasCount() const { return m_kind != ListKind::Update && m_kind != ListKind::UpdatePinyin; }
    int NumberOf(int index) const { return m_kind == ListKind::Devices ? 0 : index / m_options.pageSize; }
    std::int64_t FirstOf(int number) const { return std::int64_t{number} * m_options.pageSize; }
    int LastOf(int number) const;
    Request<int> AskForCount() const;
    void Forget(const Error& error);
    void FetchCount();
    void CountArrived(const Result<int>& count);
    void End(const Error& error);
    void AtWithoutCount(int index, PageCompletion completion);
    void PageWanted(int index, PageCompletion completion);
    void FetchPage(int number);
    void PageArrived(int number, const Result<PageHead>& head);
    Result<PagePtr> MakePage(int number, const PageHead& head) const;
    void Prefetch(int number);
    void SendChange(std::uint64_t number, Request<void> request, const Lane::Release& release);
    void Changed(std::uint64_t number, const Result<void>& result);

    template <class T>
    void InTurn(Request<T> request, std::function<void(const Result<T>&)> arrived);
    template <class T>
    void TellLater(std::function<void(Result<T>)> completion, Result<T> result);

    const std::shared_ptr<Session::Impl> m_session;
    const ListKind m_kind;
    PagerOptions m_options;
    const std::shared_ptr<Lane> m_lane;
    PageCache m_cache;
    Subscription m_watch;
    Subscription m_ending;
    std::optional<Error> m_end;  // why nothing is asked any more
    std::uint64_t m_round = 0;   // grows whenever all is forgotten
    std::optional<int> m_count;
    std::vector<CountCompletion> m_counts;
    std::map<int, std::vector<PageCompletion>> m_pages;
    std::map<std::uint64_t, Completion> m_changes;  // of level
    std::uint64_t m_lastChange = 0;
    Answers m_answers;
    int m_lastNumber = 0;
};
}  // namespace ipodkit
