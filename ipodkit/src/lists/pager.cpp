#include "lists/pager_impl.h"

namespace ipodkit
{
Pager::Pager(Session& session, ListKind kind, const PagerOptions& options)
    : m_impl(std::make_shared<Impl>(session.Inside(), kind, options))
{
    m_impl->Watch();
}

Pager::~Pager()
{
    m_impl->End();
}

Request<int> Pager::Count()
{
    return m_impl->Count();
}

Request<PagePtr> Pager::At(int index)
{
    return m_impl->At(index);
}

Request<std::vector<std::string>> Pager::Range(int first, int last)
{
    return m_impl->Range(first, last);
}

PagePtr Pager::Cached(int index) const
{
    m_impl->CatchUp();
    return m_impl->Cached(index);
}

Request<void> Pager::EnterRoot()
{
    return m_impl->Enter([](const Commands& commands) { return commands.EnterRoot(); });
}

Request<void> Pager::EnterParent()
{
    return m_impl->Enter([](const Commands& commands) { return commands.EnterParent(); });
}

Request<void> Pager::EnterChild(int index)
{
    return m_impl->Enter([index](const Commands& commands) { return commands.EnterChild(index); });
}

void Pager::Refresh()
{
    m_impl->Refresh();
}

Subscription Pager::OnOutdated(std::string name, std::function<void()> callback)
{
    return m_impl->OnOutdated(std::move(name), std::move(callback));
}
}  // namespace ipodkit
