/// @file
/// A GLib main context that another event loop runs, such as asyncio's.
#pragma once

#include <glib.h>

#include <memory>
#include <utility>
#include <vector>

namespace ipodkit::python
{
/// Use it only on the thread that runs the other loop.
class Context
{
public:
    /// A file descriptor and the events to poll it for: G_IO_IN, G_IO_OUT.
    using File = std::pair<int, int>;

    GMainContext* Native() const { return m_context.get(); }

    /// Returns the poll timeout in milliseconds (-1 for no limit) and the descriptors to poll.
    std::pair<int, std::vector<File>> Query() const;

    /// Dispatches ready sources without blocking.
    void Dispatch() const;

private:
    // With this flag, attaching a source wakes the other loop even though no thread iterates the context.
    std::shared_ptr<GMainContext> m_context{g_main_context_new_with_flags(G_MAIN_CONTEXT_FLAGS_OWNERLESS_POLLING),
                                            g_main_context_unref};
};
}  // namespace ipodkit::python
