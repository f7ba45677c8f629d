/// @file
/// Handlers of cancellations.
#pragma once

#include <gio/gio.h>
#include <ipodkit/cancellation.h>

namespace ipodkit
{
/// Calls @p thrown on the thread that cancels, at once if that has happened; never after the link was destroyed, which
/// blocks during a call on another thread. The link must not be destroyed inside the call.
class CancellationLink
{
public:
    /// @param forget  called with @p data when the link ends
    CancellationLink(const Cancellation& source, GCallback thrown, gpointer data, GDestroyNotify forget);
    ~CancellationLink();
    CancellationLink(const CancellationLink&) = delete;
    CancellationLink& operator=(const CancellationLink&) = delete;

private:
    const Cancellation m_source;
    const gulong m_handler;
};
}  // namespace ipodkit
