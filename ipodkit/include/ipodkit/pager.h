/// @file
/// Random access to the lists of the device, page by page.
///
///     Pager songs(session, ListKind::Database);
///     songs.Count().Start([&](Result<int> count) { … });
///     songs.At(1234).Within(1s).Start([&](Result<PagePtr> page) { show((*page)->At(1234)); });
///     songs.Range(0, Pager::End).CancelledBy(closed).Start([&](Result<std::vector<std::string>> names) { … });
///
/// **Never a wrong page.** All pagers of a session take turns at lists that share state in the service. A page is
/// checked against the request. The pager forgets everything when its list is replaced or reordered, its level or
/// device changes, or the service restarts; requests that are under way then complete with ErrorKind::Cancelled. It
/// learns of this from events and from the commands of the same session: EnterRoot(), EnterParent(), EnterChild(),
/// EnterDevice(), PlayDatabaseEntry(), PlayPlayingEntry() and SetShuffle(). No event reports that another application
/// changed the level, or started another list of the same size.
///
/// **End of the session.** A pager that outlives its session has no pages, and its requests complete with
/// ErrorKind::Cancelled. They complete before the session's destructor returns, those made afterwards in its context.
///
/// **Threads.** Requests may be made and started on any thread while the pager lives; all else belongs to the context's
/// thread. Completions may end the pager.
#pragma once

#include <ipodkit/list_kind.h>
#include <ipodkit/session.h>

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// A run of entries. Immutable and shared.
struct Page
{
    int first;                       ///< index of the first entry
    std::vector<std::string> names;  ///< as the service sent them, each ending at its first NUL
    bool folders = false;            ///< Database only: the entries can be entered
    bool root = false;               ///< Database only: this is the top level

    bool Holds(int index) const { return index >= first && index - first < static_cast<int>(names.size()); }

    /// @throws std::out_of_range  when the page does not hold the entry
    const std::string& At(int index) const
    {
        return names.at(Holds(index) ? static_cast<std::size_t>(index - first) : names.size());
    }
};

using PagePtr = std::shared_ptr<const Page>;

/// Out of range, every request of the pager completes with ErrorKind::BadArgument.
struct PagerOptions
{
    int pageSize = 50;              ///< entries; at least 1
    std::size_t cachedPages = 100;  ///< the least recently used are forgotten; 0 counts as 1
    int prefetch = 1;               ///< pages to fetch ahead, in the direction of the last two requests; at least 0
};

class Pager
{
public:
    /// The last entry, for Range().
    static constexpr int End = std::numeric_limits<int>::max();

    Pager(Session& session, ListKind kind, const PagerOptions& options = {});

    /// Completes everything that was not completed yet with ErrorKind::Cancelled before it returns. These completions
    /// must not use the pager any more. A change of level that was sent to the service is not taken back.
    ~Pager();
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    /// Number of entries. ErrorKind::BadArgument for the update lists.
    Request<int> Count();

    /// The page that holds an entry. ErrorKind::BadArgument when there is no such entry.
    ///
    /// The update lists report no size. There the first page is requested before any other, and a page that is not
    /// full shows where the list ends; beyond the end of a longer list, a service may also answer with
    /// ErrorKind::Refused.
    Request<PagePtr> At(int index);

    /// The names of the entries from @p first to @p last, both included, read page by page; none when the list is empty
    /// and the whole of it is requested, as by Range(0, End). All of them are of the same list: when it changes in
    /// between, the result is ErrorKind::Cancelled. Each page has the session's deadline; Within() limits them
    /// together. ErrorKind::BadArgument when @p last is less than @p first, or an entry does not exist.
    Request<std::vector<std::string>> Range(int first, int last);

    /// The page that holds an entry, from the cache; null when the page is not there, or does not hold the entry.
    PagePtr Cached(int index) const;

    /// @name Change of level, for the database lists. Every pager of the database starts afresh, at the moment the
    /// request starts: what was requested before is cancelled.
    /// @{
    Request<void> EnterRoot();
    Request<void> EnterParent();
    Request<void> EnterChild(int index);
    /// @}

    /// Forgets everything; for lists that changed without an event. What was requested before is cancelled, before
    /// this returns, and its answer is dropped when it comes; what is requested afterwards is read from the service.
    void Refresh();

    /// Called when all pages are outdated: the level, the list, the device or the service changed. Not called when the
    /// session ends.
    Subscription OnOutdated(std::string name, std::function<void()> callback);

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::shared_ptr<Impl> m_impl;
};
}  // namespace ipodkit

#pragma GCC visibility pop
