/// @file
/// What happens when a switch is thrown.
#pragma once

#include <gio/gio.h>
#include <ipodkit/cancellation.h>

namespace ipodkit
{
/// Calls @p thrown on the thread that throws the switch, at once if it has been thrown; not after the link's end, which
/// waits for a call on another thread. The link must not end inside the call.
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
