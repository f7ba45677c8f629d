#include "lists/pager_impl.h"

#include <algorithm>
#include <utility>

#include "loop/context.h"

namespace ipodkit
{
namespace
{
constexpr char kNoSize[] = "the service does not report the size of this list";

tl::unexpected<Error> NoSuchEntry(int index)
{
    return tl::unexpected<Error>(Error{ErrorKind::BadArgument, "there is no entry " + std::to_string(index)});
}

tl::unexpected<Error> WrongSize(std::size_t got, std::size_t wanted)
{
    return tl::unexpected<Error>(Error{
        ErrorKind::BadReply, "a page of " + std::to_string(got) + " entries instead of " + std::to_string(wanted)});
}
}  // namespace

Pager::Impl::Impl(std::shared_ptr<Session::Impl> session, ListKind kind, const PagerOptions& options)
    : m_session(std::move(session)),
      m_kind(kind),
      m_options(options),
      m_lane(m_session->ListLanes().Of(kind)),
      m_cache(options.cachedPages),
      m_answers(m_session->CallbackGuard())
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
                                                         if (const auto self = weak.lock()) self->End(kSessionEnded);
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
    m_end = error;
    m_watch.Reset();
    m_ending.Reset();
    for (auto& [number, completion] : std::exchange(m_changes, {}))
        m_answers.Add<void>(std::move(completion), tl::unexpected<Error>(error));
    Forget(error);
}

Subscription Pager::Impl::OnOutdated(std::string name, std::function<void()> callback)
{
    return Subscription(m_lane->Watchers().Add(std::move(name), std::move(callback)));
}

template <class T>
void Pager::Impl::TellLater(std::function<void(Result<T>)> completion, Result<T> result)
{
    m_answers.Add<T>(std::move(completion), std::move(result));
    Post(m_session->Context(),
         [weak = weak_from_this()]
         {
             if (const auto self = weak.lock()) self->m_answers.TellFirst();
         });
}

// An answer to what was asked before all was forgotten, or that belongs to a list that became another one meanwhile,
// is dropped: who waited for it has been told.
template <class T>
void Pager::Impl::InTurn(Request<T> request, std::function<void(const Result<T>&)> arrived)
{
    const auto held = std::make_shared<Request<T>>(std::move(request));
    const auto current = [weak = weak_from_this(), epoch = m_lane->Epoch(), round = m_round]
    {
        const auto self = weak.lock();
        return self != nullptr && self->m_lane->Epoch() == epoch && self->m_round == round ? self : nullptr;
    };
    m_lane->Wait(
        [held, arrived = std::move(arrived), current](const Lane::Release& release)
        {
            if (current() == nullptr) return release();
            std::move(*held).Start(
                [arrived, current, release](const Result<T>& result)
                {
                    if (const auto self = current()) arrived(result);
                    release();
                });
        });
}

// Each is told that its list is gone, what is known already is not told any more. Callbacks may ask again meanwhile,
// and end the pager.
void Pager::Impl::Forget(const Error& error)
{
    const auto self = shared_from_this();
    ++m_round;
    m_cache.Clear();
    m_count.reset();
    m_answers.Replace(error);
    for (auto& completion : std::exchange(m_counts, {}))
        m_answers.Add<int>(std::move(completion), tl::unexpected<Error>(error));
    for (auto& [number, completions] : std::exchange(m_pages, {}))
        for (auto& completion : completions)
            m_answers.Add<PagePtr>(std::move(completion), tl::unexpected<Error>(error));
    m_answers.TellAll();
}

Request<int> Pager::Impl::AskForCount() const
{
    if (IsDatabase()) return Ask().DatabaseCount();
    return m_kind == ListKind::Playing ? Ask().PlayingCount() : Ask().DeviceCount();
}

void Pager::Impl::Count(CountCompletion completion)
{
    if (m_end) return TellLater<int>(std::move(completion), tl::unexpected<Error>(*m_end));
    if (!HasCount())
        return TellLater<int>(std::move(completion), tl::unexpected<Error>(Error{ErrorKind::BadArgument, kNoSize}));
    if (m_count) return TellLater<int>(std::move(completion), *m_count);
    m_counts.push_back(std::move(completion));
    if (m_counts.size() == 1) FetchCount();
}

void Pager::Impl::FetchCount()
{
    InTurn<int>(AskForCount(), [this](const Result<int>& count) { CountArrived(count); });
}

void Pager::Impl::CountArrived(const Result<int>& count)
{
    if (count) m_count = *count;
    for (auto& completion : std::exchange(m_counts, {})) m_answers.Add<int>(std::move(completion), count);
    m_answers.TellAll();
}

// The size comes first: without it nobody knows how long a page must be.
void Pager::Impl::At(int index, PageCompletion completion)
{
    if (m_end) return TellLater<PagePtr>(std::move(completion), tl::unexpected<Error>(*m_end));
    if (index < 0) return TellLater<PagePtr>(std::move(completion), NoSuchEntry(index));
    if (!HasCount()) return AtWithoutCount(index, std::move(completion));
    if (m_count) return PageWanted(index, std::move(completion));
    Count(
        [this, index, completion = std::move(completion)](const Result<int>& count)
        {
            if (count) return PageWanted(index, completion);
            completion(tl::unexpected<Error>(count.error()));
        });
}

// Where no size is reported, a page that is not full shows where the list ends. The first page is asked for first:
// beyond the end some services refuse, and some fill in the whole list whatever is asked for.
void Pager::Impl::AtWithoutCount(int index, PageCompletion completion)
{
    const auto checked = [index, completion = std::move(completion)](const Result<PagePtr>& page)
    { completion(page && !(*page)->Holds(index) ? Result<PagePtr>(NoSuchEntry(index)) : page); };
    if (NumberOf(index) == 0) return PageWanted(index, checked);
    PageWanted(0,
               [this, index, checked](const Result<PagePtr>& first)
               {
                   const bool full = first && (*first)->Holds(m_options.pageSize - 1);
                   return full ? PageWanted(index, checked) : checked(first);
               });
}

void Pager::Impl::PageWanted(int index, PageCompletion completion)
{
    if (m_count && index >= *m_count) return TellLater<PagePtr>(std::move(completion), NoSuchEntry(index));
    const int number = NumberOf(index);
    if (const PagePtr page = m_cache.Find(number))
    {
        TellLater<PagePtr>(std::move(completion), page);
        return Prefetch(number);
    }
    const bool fresh = m_pages.count(number) == 0;
    m_pages[number].push_back(std::move(completion));
    if (fresh) FetchPage(number);
}

// Beyond the end when the size is not known.
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

void Pager::Impl::FetchPage(int number)
{
    InTurn<PageHead>(AskForPage(m_session->Bus(), m_session->Options().deadline, m_kind,
                                static_cast<int>(FirstOf(number)), LastOf(number)),
                     [this, number](const Result<PageHead>& head) { PageArrived(number, head); });
}

// A page of the wrong size says that the size of the list was wrong too.
void Pager::Impl::PageArrived(int number, const Result<PageHead>& head)
{
    const Result<PagePtr> page = head.and_then([&](const PageHead& arrived) { return MakePage(number, arrived); });
    if (page)
        m_cache.Put(number, *page);
    else if (page.error().kind == ErrorKind::BadReply)
        m_count.reset();
    auto waiting = m_pages.extract(number);
    if (waiting.empty() || waiting.mapped().empty()) return;
    if (page) Prefetch(number);
    for (auto& completion : waiting.mapped()) m_answers.Add<PagePtr>(std::move(completion), page);
    m_answers.TellAll();
}

Result<PagePtr> Pager::Impl::MakePage(int number, const PageHead& head) const
{
    auto names = NamesOf(m_kind);
    if (!names) return tl::unexpected<Error>(Error{ErrorKind::BadReply, "the shared list is damaged"});
    const auto wanted = static_cast<std::size_t>(LastOf(number) - FirstOf(number) + 1);
    const bool fits = HasCount() ? names->size() == wanted : names->size() <= wanted;
    if (!fits) return WrongSize(names->size(), wanted);
    return std::make_shared<const Page>(
        Page{static_cast<int>(FirstOf(number)), std::move(*names), head.folders, head.root});
}

// In the direction of the last two requests. Nobody waits for these pages; a later request may join.
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
        m_pages[next];
        FetchPage(next);
    }
}

// Outdates at once, so that nothing of the old level is shown. Whom that tells may end the pager, which withdraws what
// was not sent yet.
void Pager::Impl::Enter(Request<void> request, Completion completion)
{
    if (m_end) return TellLater<void>(std::move(completion), tl::unexpected<Error>(*m_end));
    if (!IsDatabase())
        return TellLater<void>(std::move(completion),
                               tl::unexpected<Error>(Error{ErrorKind::BadArgument, "this list has no levels"}));
    const auto self = shared_from_this();
    const auto held = std::make_shared<Request<void>>(std::move(request));
    const std::uint64_t number = ++m_lastChange;
    m_changes.emplace(number, std::move(completion));
    m_lane->Outdate(m_session->CallbackGuard());
    m_lane->Wait(
        [weak = weak_from_this(), number, held](const Lane::Release& release)
        {
            const auto waiting = weak.lock();
            if (waiting == nullptr || waiting->m_changes.count(number) == 0) return release();
            waiting->SendChange(number, std::move(*held), release);
        });
}

// The lists become outdated again when the service has followed it, because the other pagers may have asked in between;
// also when this one has ended.
void Pager::Impl::SendChange(std::uint64_t number, Request<void> request, const Lane::Release& release)
{
    std::move(request).Start(
        [weak = weak_from_this(), number, release](const Result<void>& result)
        {
            release();
            if (const auto self = weak.lock()) self->Changed(number, result);
        });
}

void Pager::Impl::Changed(std::uint64_t number, const Result<void>& result)
{
    auto change = m_changes.extract(number);
    if (change.empty()) return;
    m_answers.Add<void>(std::move(change.mapped()), result);
    m_answers.TellAll();
}
}  // namespace ipodkit
