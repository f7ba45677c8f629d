#include "loop/context.h"

#include <chrono>
#include <shared_mutex>

namespace ipodkit
{
namespace
{
// Longer than any wait for a segment's lock. Bounded, because a fork may have copied a gate whose readers exist only
// in the parent.
constexpr std::chrono::seconds kLongestWork(12);

// Work aside holds it shared. The end of the process locks it for good: static objects that the work uses, such as the
// segments, are destroyed then.
std::shared_timed_mutex& Gate()
{
    static auto* const gate = new std::shared_timed_mutex;
    return *gate;
}

const struct ClosedAtExit
{
    ~ClosedAtExit() { (void)Gate().try_lock_for(kLongestWork); }
} closedAtExit;

bool IsDefaultHere(GMainContext* context)
{
    GMainContext* const here = g_main_context_get_thread_default();
    return here == context || (here == nullptr && context == g_main_context_default());
}

gboolean RunWork(gpointer work)
{
    static_cast<PostedTask*>(work)->Do();
    return G_SOURCE_REMOVE;
}

void DeleteWork(gpointer work)
{
    delete static_cast<PostedTask*>(work);
}
}  // namespace

DefaultContext::DefaultContext(GMainContext* context) : m_pushed(IsDefaultHere(context) ? nullptr : context)
{
    if (m_pushed != nullptr) g_main_context_push_thread_default(m_pushed);
}

DefaultContext::~DefaultContext()
{
    if (m_pushed != nullptr) g_main_context_pop_thread_default(m_pushed);
}

void Post(GMainContext* context, std::function<void()> work)
{
    GSource* const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, RunWork, new PostedTask(std::move(work)), DeleteWork);
    g_source_attach(source, context);
    g_source_unref(source);
}

SourcePtr After(GMainContext* context, guint milliseconds, std::function<void()> work)
{
    SourcePtr source(g_timeout_source_new(milliseconds));
    g_source_set_callback(source.get(), RunWork, new PostedTask(std::move(work)), DeleteWork);
    g_source_attach(source.get(), context);
    return source;
}

void RunAside(std::function<void()> work)
{
    GTask* const task = g_task_new(nullptr, nullptr, nullptr, nullptr);
    g_task_set_task_data(task, new PostedTask(std::move(work)),
                         [](gpointer data) { delete static_cast<PostedTask*>(data); });
    g_task_run_in_thread(task,
                         [](GTask* self, gpointer, gpointer data, GCancellable*)
                         {
                             const std::shared_lock<std::shared_timed_mutex> open(Gate());
                             static_cast<PostedTask*>(data)->Do();
                             g_task_return_boolean(self, TRUE);
                         });
    g_object_unref(task);
}
}  // namespace ipodkit
