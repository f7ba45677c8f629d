#include "player/list.h"

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
}  // namespace

List::List(Session& session, ipodkit::ListKind kind, int pageSize)
    : m_session(session), m_pager(session.Ready(), kind, OptionsFor(pageSize))
{
}

int List::Count()
{
    return m_session.Taken(m_session.Await(m_pager.Count()));
}

ipodkit::PagePtr List::PageWith(int index, const char* refusal)
{
    return m_session.Taken(m_session.Await(m_pager.At(index)), refusal);
}

std::vector<std::string> List::Names(int first, int end, const char* refusal)
{
    if (first >= end) return {};
    return m_session.Taken(m_session.Await(m_pager.Range(first, end - 1)), refusal);
}
}  // namespace ctl
