#include "browse/index_builder.h"

#include <gio/gio.h>

#include <memory>
#include <optional>

namespace ctl::browse
{
struct IndexBuilder::Job
{
    IndexBuilder& builder;
    std::vector<std::string> names;
    Completion completion;
    std::optional<ipodkit::Result<ipodkit::JumpIndex>> result;

    static void Run(GTask* task, gpointer, gpointer data, GCancellable*)
    {
        auto& job = *static_cast<Job*>(data);
        job.result = ipodkit::JumpIndex::Build(std::move(job.names));
        g_task_return_boolean(task, TRUE);
    }

    static void Done(GObject*, GAsyncResult* task, gpointer)
    {
        const auto& job = *static_cast<Job*>(g_task_get_task_data(G_TASK(task)));
        --job.builder.m_running;
        job.completion(*job.result);
    }

    static void Delete(gpointer data) { delete static_cast<Job*>(data); }
};

IndexBuilder::~IndexBuilder()
{
    while (m_running > 0) g_main_context_iteration(nullptr, TRUE);
}

void IndexBuilder::Build(std::vector<std::string> names, Completion completion)
{
    ++m_running;
    GTask* const task = g_task_new(nullptr, nullptr, Job::Done, nullptr);
    g_task_set_task_data(task, new Job{*this, std::move(names), std::move(completion), std::nullopt}, Job::Delete);
    g_task_run_in_thread(task, Job::Run);
    g_object_unref(task);
}
}  // namespace ctl::browse
