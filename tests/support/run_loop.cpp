#include "support/run_loop.h"

#include <glib.h>

namespace test
{
namespace
{
gboolean SetTrue(gpointer flag)
{
    *static_cast<bool*>(flag) = true;
    return G_SOURCE_CONTINUE;
}

// The condition is polled at least this often, because other threads may change it.
gboolean WakeUp(gpointer)
{
    return G_SOURCE_CONTINUE;
}
}  // namespace

bool RunLoopUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    bool late = false;
    const guint timeout = g_timeout_add(static_cast<guint>(limit.count()), SetTrue, &late);
    const guint wakeUps = g_timeout_add(2, WakeUp, nullptr);
    while (!late && !condition()) g_main_context_iteration(nullptr, TRUE);
    g_source_remove(wakeUps);
    g_source_remove(timeout);
    return condition();
}

void RunLoopFor(std::chrono::milliseconds duration)
{
    RunLoopUntil([] { return false; }, duration);
}
}  // namespace test
