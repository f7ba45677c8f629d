/// @file
/// Registration and removal of callbacks.
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
///
/// The target is destroyed when the registration ends, or as soon as its own callback, having ended it, returns. The
/// lock is free by then, because destructors of captured objects may need other locks.
class Slot
{
public:
    Slot(std::string name, std::shared_ptr<void> target) : m_name(std::move(name)), m_target(std::move(target)) {}
    virtual ~Slot() = default;
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    void End();
    bool Live() const { return m_live; }

protected:
    template <class Callback>
    void RunWith(const Guard& guard, const Callback& callback)
    {
        std::shared_ptr<void> ended;
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        if (!m_live) return;
        ++m_running;
        guard.Run(m_name, [&] { callback(m_target.get()); });
        --m_running;
        ended = TakeEnded();
    }

private:
    std::shared_ptr<void> TakeEnded();

    const std::string m_name;
    std::shared_ptr<void> m_target;
    std::recursive_mutex m_mutex;
    std::atomic<bool> m_live{true};
    int m_running = 0;  // a callback that runs the loop may be called inside itself
};
}  // namespace detail

/// The registrations of one kind. @p Target is a function, or a pointer to a listener.
template <class Target>
class Registry
{
public:
    struct Entry final : detail::Slot
    {
        Entry(std::string name, Target target) : Slot(std::move(name), std::make_shared<Target>(std::move(target))) {}

        /// Calls @p call with the target, unless the registration has ended.
        template <class Call>
        void Run(const Guard& guard, const Call& call)
        {
            RunWith(guard, [&call](void* target) { call(*static_cast<Target*>(target)); });
        }
    };
    using EntryPtr = std::shared_ptr<Entry>;

    EntryPtr Add(std::string name, Target target)
    {
        auto entry = std::make_shared<Entry>(std::move(name), std::move(target));
        const std::lock_guard<std::mutex> lock(m_mutex);
        ForgetEnded();
        m_entries.push_back(entry);
        return entry;
    }

    /// Ends all.
    void End()
    {
        for (const EntryPtr& entry : Snapshot()) entry->End();
    }

    /// Calls all targets in the order of registration, except those that were added or ended meanwhile.
    template <class Call>
    void ForEach(const Guard& guard, const Call& call)
    {
        for (const EntryPtr& entry : Snapshot()) entry->Run(guard, call);
    }

private:
    std::vector<EntryPtr> Snapshot()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ForgetEnded();
        return m_entries;
    }

    void ForgetEnded()
    {
        m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), [](auto& each) { return !each->Live(); }),
                        m_entries.end());
    }

    std::mutex m_mutex;
    std::vector<EntryPtr> m_entries;
};
}  // namespace ipodkit
