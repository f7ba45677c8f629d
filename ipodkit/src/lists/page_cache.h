/// @file
/// The most recently used pages.
#pragma once

#include <ipodkit/pager.h>

#include <algorithm>
#include <list>
#include <unordered_map>
#include <utility>

namespace ipodkit
{
/// Context thread only.
class PageCache
{
public:
    explicit PageCache(std::size_t limit) : m_limit(std::max<std::size_t>(limit, 1)) {}

    /// Returns the page, which becomes the most recently used; null if it is not cached.
    PagePtr Find(int number)
    {
        const auto found = m_index.find(number);
        if (found == m_index.end()) return nullptr;
        m_pages.splice(m_pages.begin(), m_pages, found->second);
        return found->second->second;
    }

    void Put(int number, PagePtr page)
    {
        if (Find(number) != nullptr)
            m_pages.front().second = std::move(page);
        else
            m_index[number] = m_pages.insert(m_pages.begin(), {number, std::move(page)});
        if (m_pages.size() <= m_limit) return;
        m_index.erase(m_pages.back().first);
        m_pages.pop_back();
    }

    void Clear()
    {
        m_index.clear();
        m_pages.clear();
    }

private:
    using Entries = std::list<std::pair<int, PagePtr>>;

    const std::size_t m_limit;
    Entries m_pages;
    std::unordered_map<int, Entries::iterator> m_index;
};
}  // namespace ipodkit
