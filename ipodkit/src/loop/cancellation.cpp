#include <ipodkit/cancellation.h>

#include "loop/glib_ptr.h"

namespace ipodkit
{
Cancellation::Cancellation() : m_native(g_cancellable_new(), g_object_unref) {}

void Cancellation::Cancel() const
{
    g_cancellable_cancel(m_native.get());
}

bool Cancellation::Cancelled() const
{
    return g_cancellable_is_cancelled(m_native.get()) != FALSE;
}
}  // namespace ipodkit
