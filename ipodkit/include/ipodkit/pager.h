/// @file
/// Random access to the lists of the device, page by page.
///
///     Pager songs(session, ListKind::Database);
///     songs.Count().Start([&](Result<int> count) { … });
///     songs.At(1234).Within(1s).Start([&](Result<PagePtr> page) { show((*page)->At(1234)); });
///     songs.Range(0, Pager::End).CancelledBy(closed).Start([&](Result<std::vector<std::string>> names) { … });
///
/// **Never a wrong page.** All pagers of a session take turns at lists that share state in the service. Each page is
/// checked against the request. The pager drops its pages when its list is replaced or reordered, its level or device
/// changes, or the service restarts; requests under way then complete with ErrorKind::Cancelled. It detects this by
/// events, and by the commands of the same session: EnterRoot(), EnterParent(), EnterChild(), EnterDevice(),
/// PlayDatabaseEntry(), PlayPlayingEntry(), and SetShuffle(). No event reports that another application changed the
/// level, or started another list of the same size: hold a BrowseLease, or call Refresh() where that matters.
///
/// **Other applications** read the same lists. Requests wait for those that use the kit, and complete with
/// ErrorKind::Busy when that takes too long: see sharing.h.
///
/// **End of the session.** A pager that outlives its session has no pages, and its requests complete with
/// ErrorKind::Cancelled. They complete before the session's destructor returns, those made afterwards in its context.
///
/// **Threads.** Requests may be made and started on any thread while the pager lives; use everything else on the
/// context's thread only. Completions may destroy the pager.
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
/// Consecutive entries of a list. Immutable and shared.
struct Page
{
    int first;                       ///< index of the first entry
    std::vector<std::string> names;  ///< as the service sent them, each ending at its first NUL
    bool folders = false;            ///< Database only: the entries can be entered
    bool root = false;               ///< Database only: this is the top level

    /// Returns whether the page contains the list's entry @p index.
    bool Holds(int index) const { return index >= first && index - first < static_cast<int>(names.size()); }

    /// Returns the name of the list's entry @p index.
    /// @throws std::out_of_range  when the page does not have the entry
    const std::string& At(int index) const
    {
        return names.at(Holds(index) ? static_cast<std::size_t>(index - first) : names.size());
    }
};

using PagePtr = std::shared_ptr<const Page>;

/// Limits of a pager. When an option is out of range, every request of the pager completes with ErrorKind::BadArgument.
struct PagerOptions
{
    int pageSize = 50;              ///< entries; at least 1
    std::size_t cachedPages = 100;  ///< the least recently used are dropped; 0 counts as 1
    int prefetch = 1;               ///< pages to fetch ahead, in the direction of the last two requests; at least 0
};

/// Reads one list of the service in pages, and caches them.
class Pager
{
public:
    /// The last entry, for Range().
    static constexpr int End = std::numeric_limits<int>::max();

    /// Reads nothing yet. The pager may outlive the session.
    Pager(Session& session, ListKind kind, const PagerOptions& options = {});

    /// Completes its open requests with ErrorKind::Cancelled before it returns; their completions must no longer use
    /// the pager. A change of level that was sent is not undone.
    ~Pager();
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    /// Returns the number of entries. ErrorKind::BadArgument for the update lists, which have no size.
    Request<int> Count();

    /// Returns the page that has the entry @p index, from 0. ErrorKind::BadArgument when the list is shorter.
    ///
    /// The update lists report no size: the first page is read before any other, and a page that is not full marks the
    /// end of the list. Beyond the end, a service may also answer with an error, ErrorKind::Refused.
    Request<PagePtr> At(int index);

    /// Returns the names of the entries from @p first to @p last, both inclusive, read page by page. Range(0, End) of
    /// an empty list returns no names. All names are of the same list: if it changes meanwhile, the result is
    /// ErrorKind::Cancelled. Each page has the session's deadline; Within() limits all together. ErrorKind::BadArgument
    /// when @p last is less than @p first, or an entry does not exist.
    Request<std::vector<std::string>> Range(int first, int last);

    /// Returns the page that has the entry from the cache; null if it is not cached. Context thread only.
    PagePtr Cached(int index) const;

    /// @name Change of level, for the database lists; ErrorKind::BadArgument for others. When the request starts, every
    /// pager of the database drops its pages, and requests made before are cancelled. ErrorKind::Refused when the
    /// service has no such level. EnterChild() counts from 0.
    /// @{
    Request<void> EnterRoot();
    Request<void> EnterParent();
    Request<void> EnterChild(int index);
    /// @}

    /// Drops all pages, for a list that changed without an event. Requests made before complete with
    /// ErrorKind::Cancelled before this returns; later ones read from the service. Context thread only.
    void Refresh();

    /// Calls back when all pages are outdated: the level, the list, the device, or the service changed. Not called when
    /// the session ends. The log identifies the callback by @p name.
    Subscription OnOutdated(std::string name, std::function<void()> callback);

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::shared_ptr<Impl> m_impl;
};
}  // namespace ipodkit

#pragma GCC visibility pop
