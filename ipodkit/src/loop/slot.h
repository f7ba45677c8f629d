/// @file
/// Registered callbacks and their removal.
#pragma once

#include <ipodkit/subscription.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "loop/guard.h"

namespace ipodkit
{
namespace detail
{
/// One registration. Its lock is held while its callback runs, and is recursive, so that a callback can end its own
/// registration and another thread waits for the callback to return.
class Slot
{
public:
    explicit Slot(std::string name) : m_name(std::move(name)) {}
    virtual ~Slot() = default;
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    void End();
    bool Live() const { return m_live; }

    template <class Callback>
    void Run(const Guard& guard, Callback&& callback)
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        if (m_live) guard.Run(m_name, callback);
    }

private:
    const std::string m_name;
    std::recursive_mutex m_mutex;
    std::atomic<bool> m_live{true};
};
}  // namespace detail

/// The registrations of one kind. @p Target is what is registered: a function, or a pointer to a listener.
template <class Target>
class Registry
{
public:
    struct Entry final : detail::Slot
    {
        Entry(std::string name, Target registered) : Slot(std::move(name)), target(std::move(registered)) {}
        Target target;
    };
    using EntryPtr = std::shared_ptr<Entry>;

    EntryPtr Add(std::string name, Target target)
    {
        auto entry = std::make_shared<Entry>(std::move(name), std::move(target));
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.push_back(entry);
        return entry;
    }

    /// Ends all.
    void End()
    {
        for (const EntryPtr& entry : Snapshot()) entry->End();
    }

    /// Calls each, in the order of registration. Those added meanwhile are left out, those ended too.
    template <class Call>
    void ForEach(const Guard& guard, const Call& call)
    {
        for (const EntryPtr& entry : Snapshot()) entry->Run(guard, [&] { call(entry->target); });
    }

private:
    // Without those that were ended, which are let go.
    std::vector<EntryPtr> Snapshot()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), [](auto& each) { return !each->Live(); }),
                        m_entries.end());
        return m_entries;
    }

    std::mutex m_mutex;
    std::vector<EntryPtr> m_entries;
};
}  // namespace ipodkit
