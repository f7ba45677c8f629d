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
    ipodnames::JumpIndexOptions options;
    Completion completion;
    std::optional<ipodnames::JumpIndex> index;

    static void Run(GTask* task, gpointer, gpointer data, GCancellable*)
    {
        auto& job = *static_cast<Job*>(data);
        job.index.emplace(job.names, job.options);
        g_task_return_boolean(task, TRUE);
    }

    static void Done(GObject*, GAsyncResult* task, gpointer)
    {
        const auto& job = *static_cast<Job*>(g_task_get_task_data(G_TASK(task)));
        --job.builder.m_running;
        job.completion(*job.index);
    }

    static void Delete(gpointer data) { delete static_cast<Job*>(data); }
};

IndexBuilder::~IndexBuilder()
{
    while (m_running > 0) g_main_context_iteration(nullptr, TRUE);
}

void IndexBuilder::Build(std::vector<std::string> names, std::vector<std::string> readings, Completion completion)
{
    ++m_running;
    GTask* const task = g_task_new(nullptr, nullptr, Job::Done, nullptr);
    auto job = std::make_unique<Job>(Job{*this, std::move(names), {}, std::move(completion), std::nullopt});
    job->options.readings = std::move(readings);
    g_task_set_task_data(task, job.release(), Job::Delete);
    g_task_run_in_thread(task, Job::Run);
    g_object_unref(task);
}
}  // namespace ctl::browse
