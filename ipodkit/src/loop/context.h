/// @file
/// Posts tasks to the thread that runs a main context.
#pragma once

#include <functional>
#include <mutex>

#include "loop/glib_ptr.h"

namespace ipodkit
{
/// Makes @p context the thread-default one during its lifetime, so that GIO delivers there. The calling thread runs the
/// context.
class DefaultContext
{
public:
    explicit DefaultContext(GMainContext* context);
    ~DefaultContext();
    DefaultContext(const DefaultContext&) = delete;
    DefaultContext& operator=(const DefaultContext&) = delete;

private:
    GMainContext* m_pushed;
};

/// A task that one thread posts and another runs. GLib orders the two; the lock makes the order visible to thread
/// checkers, which do not instrument GLib.
class PostedTask
{
public:
    explicit PostedTask(std::function<void()> work)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_work = std::move(work);
    }

    void Do()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const std::function<void()> work = std::move(m_work);
        lock.unlock();
        work();
    }

private:
    std::mutex m_mutex;
    std::function<void()> m_work;
};

/// Runs @p work in @p context, later, even if the caller runs the context.
void Post(GMainContext* context, std::function<void()> work);

/// Runs @p work in @p context after that many milliseconds, unless the source is destroyed before.
SourcePtr After(GMainContext* context, guint milliseconds, std::function<void()> work);

/// Runs @p work on a thread of GLib's pool. The exit of the process waits until running work has ended, and skips the
/// rest.
void RunAside(std::function<void()> work);
}  // namespace ipodkit
