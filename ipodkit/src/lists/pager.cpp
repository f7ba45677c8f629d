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

void Pager::Count(CountCompletion completion)
{
    m_impl->CatchUp();
    m_impl->Count(std::move(completion));
}

void Pager::At(int index, PageCompletion completion)
{
    m_impl->CatchUp();
    m_impl->At(index, std::move(completion));
}

PagePtr Pager::Cached(int index) const
{
    m_impl->CatchUp();
    return m_impl->Cached(index);
}

void Pager::EnterRoot(Completion completion)
{
    m_impl->CatchUp();
    m_impl->Enter(m_impl->Ask().EnterRoot(), std::move(completion));
}

void Pager::EnterParent(Completion completion)
{
    m_impl->CatchUp();
    m_impl->Enter(m_impl->Ask().EnterParent(), std::move(completion));
}

void Pager::EnterChild(int index, Completion completion)
{
    m_impl->CatchUp();
    m_impl->Enter(m_impl->Ask().EnterChild(index), std::move(completion));
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
