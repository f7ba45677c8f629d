#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "lists/pager_impl.h"

namespace ipodkit
{
/// The names that Range() has collected.
struct Pager::Impl::Walk
{
    PendingPtr<Names> request;
    int next;
    int last;
    bool toTheEnd;
    Names names{};
    std::shared_ptr<void> level{};  // its lock, held while pages are read

    void Add(const Page& page);
    void Finish(Result<Names> result);
};

// The lock is released first, because a completion may change the level.
void Pager::Impl::Walk::Finish(Result<Names> result)
{
    level.reset();
    request->Settle(std::move(result));
}

void Pager::Impl::Walk::Add(const Page& page)
{
    const auto begin = page.names.begin() + (next - page.first);
    const auto wanted = std::min<std::int64_t>(page.names.end() - begin, std::int64_t{last} - next + 1);
    names.insert(names.end(), begin, begin + static_cast<std::ptrdiff_t>(wanted));
    next += static_cast<int>(wanted);
}

Request<Pager::Impl::Names> Pager::Impl::Range(int first, int last)
{
    const auto begin = [first, last](Impl& self, const PendingPtr<Names>& request)
    {
        if (first < 0) return request->Settle(tl::unexpected(NoSuchEntry(first)));
        if (last < first)
            return request->Settle(tl::unexpected(
                Error{ErrorKind::BadArgument, "range: expected a last index of at least " + std::to_string(first) +
                                                  ", got " + std::to_string(last)}));
        self.LockWalk(std::make_shared<Walk>(Walk{request, first, last, last == Pager::End}));
    };
    return Reading<Names>("pager range", {}, begin);
}

void Pager::Impl::LockWalk(const WalkPtr& walk)
{
    if (!HasLevel()) return BeginWalk(walk);
    m_session->SharedLeases()->TakeForReads(
        [weak = weak_from_this(), walk](const Result<std::shared_ptr<void>>& level)
        {
            const auto self = weak.lock();
            if (self == nullptr || !walk->request->Open()) return;
            if (!level) return walk->Finish(tl::unexpected(level.error()));
            walk->level = *level;
            self->BeginWalk(walk);
        });
}

void Pager::Impl::BeginWalk(const WalkPtr& walk)
{
    if (!HasCount()) return WalkOn(walk);
    CountWanted({walk->request, [this, walk](const Result<int>& count)
                 {
                     if (!count) return walk->Finish(tl::unexpected(count.error()));
                     if (walk->toTheEnd && walk->next <= *count) walk->last = *count - 1;
                     WalkOn(walk);
                 }});
}

// Reads page by page; iterates over cached pages instead of recursing.
void Pager::Impl::WalkOn(const WalkPtr& walk)
{
    for (PagePtr page = Cached(walk->next); page != nullptr && walk->next <= walk->last; page = Cached(walk->next))
        walk->Add(*page);
    if (walk->next > walk->last) return walk->Finish(std::move(walk->names));
    EntryWanted(walk->next, {walk->request, [this, walk](const Result<PagePtr>& page) { Walked(walk, page); }});
}

// A list without a reported size ends where no more entries follow.
void Pager::Impl::Walked(const WalkPtr& walk, const Result<PagePtr>& page)
{
    if (page)
    {
        walk->Add(**page);
        return WalkOn(walk);
    }
    const Error& error = page.error();
    const bool ended = error.kind == ErrorKind::BadArgument ||
                       (error.kind == ErrorKind::Refused && error.name.empty() && walk->next > 0);
    if (walk->toTheEnd && !HasCount() && ended) return walk->Finish(std::move(walk->names));
    walk->Finish(tl::unexpected(error));
}
}  // namespace ipodkit
