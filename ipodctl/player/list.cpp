#include "player/list.h"

#include <algorithm>

namespace ctl
{
namespace
{
ipodkit::PagerOptions OptionsFor(int pageSize)
{
    ipodkit::PagerOptions options;
    options.pageSize = pageSize;
    options.cachedPages = 2;
    options.prefetch = 0;
    return options;
}

// All applications are handed their pages in the same place.
ipodkit::Error WithCause(ipodkit::Error error)
{
    const bool otherSize = error.kind == ipodkit::ErrorKind::BadReply && error.reason.rfind("a page of ", 0) == 0;
    if (otherSize) error.reason += "; another application may have read a list at the same time, try again";
    return error;
}
}  // namespace

List::List(Session& session, ipodkit::ListKind kind, int pageSize)
    : m_session(session), m_pager(session.Ready(), kind, OptionsFor(pageSize))
{
}

int List::Count()
{
    return m_session.Taken(m_session.Await(m_pager.Count()));
}

ipodkit::Result<ipodkit::PagePtr> List::PageWith(int index)
{
    return m_session.Await(m_pager.At(index)).map_error(WithCause);
}

std::vector<std::string> List::Names(int first, int end, const char* refusal)
{
    std::vector<std::string> names;
    for (int next = first; next < end;)
    {
        const ipodkit::PagePtr page = m_session.Taken(PageWith(next), refusal);
        const auto skipped = static_cast<std::size_t>(next - page->first);
        if (skipped >= page->names.size()) break;
        const auto taken = std::min(static_cast<std::size_t>(end - next), page->names.size() - skipped);
        const auto begin = page->names.begin() + static_cast<std::ptrdiff_t>(skipped);
        names.insert(names.end(), begin, begin + static_cast<std::ptrdiff_t>(taken));
        next += static_cast<int>(taken);
    }
    return names;
}
}  // namespace ctl
