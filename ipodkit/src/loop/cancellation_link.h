/// @file
/// Connects handlers to cancellations.
#pragma once

#include <gio/gio.h>
#include <ipodkit/cancellation.h>

namespace ipodkit
{
/// Calls @p onCancelled on the thread that cancels, at once if the cancellation has already been triggered; never after
/// the link was destroyed. Destroying the link blocks during a call on another thread, and must not happen inside the
/// call.
class CancellationLink
{
public:
    /// @param forget  called with @p data when the link ends
    CancellationLink(const Cancellation& source, GCallback onCancelled, gpointer data, GDestroyNotify forget);
    ~CancellationLink();
    CancellationLink(const CancellationLink&) = delete;
    CancellationLink& operator=(const CancellationLink&) = delete;

private:
    const Cancellation m_source;
    const gulong m_handler;
};
}  // namespace ipodkit
