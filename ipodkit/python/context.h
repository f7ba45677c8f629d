/// @file
/// A main context that is run by another loop, such as that of asyncio.
#pragma once

#include <glib.h>

#include <memory>
#include <utility>
#include <vector>

namespace ipodkit::python
{
/// For one thread: the one that runs the other loop.
class Context
{
public:
    /// What the other loop waits for: a file, and G_IO_IN or G_IO_OUT.
    using File = std::pair<int, int>;

    GMainContext* Native() const { return m_context.get(); }

    /// How long it may wait, in milliseconds, -1 for ever; and for which files.
    std::pair<int, std::vector<File>> Query() const;

    /// Runs what is ready.
    void Dispatch() const;

private:
    // Sources that are attached while nothing iterates the context wake the other loop up.
    std::shared_ptr<GMainContext> m_context{g_main_context_new_with_flags(G_MAIN_CONTEXT_FLAGS_OWNERLESS_POLLING),
                                            g_main_context_unref};
};
}  // namespace ipodkit::python
