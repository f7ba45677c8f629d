#include <ipodkit/cancellation.h>

#include "loop/cancellation_link.h"
#include "loop/glib_ptr.h"

namespace ipodkit
{
namespace
{
void CancelOther(GCancellable*, gpointer other)
{
    g_cancellable_cancel(G_CANCELLABLE(other));
}
}  // namespace

CancellationLink::CancellationLink(const Cancellation& source, GCallback onCancelled, gpointer data,
                                   GDestroyNotify forget)
    : m_source(source), m_handler(g_cancellable_connect(source.Native(), onCancelled, data, forget))
{
}

// A handler is not connected if the cancellation had been triggered before.
CancellationLink::~CancellationLink()
{
    if (m_handler != 0) g_cancellable_disconnect(m_source.Native(), m_handler);
}

Cancellation::Cancellation() : m_native(g_cancellable_new(), g_object_unref) {}

void Cancellation::Cancel() const
{
    g_cancellable_cancel(m_native.get());
}

bool Cancellation::Cancelled() const
{
    return g_cancellable_is_cancelled(m_native.get()) != FALSE;
}

Cancellation Cancellation::Either(const Cancellation& one, const Cancellation& other)
{
    GCancellable* const both = g_cancellable_new();
    const auto linked = [both](const Cancellation& source)
    { return std::make_shared<CancellationLink>(source, G_CALLBACK(CancelOther), g_object_ref(both), g_object_unref); };
    return Cancellation(
        std::shared_ptr<GCancellable>(both,
                                      [first = linked(one), second = linked(other)](GCancellable* native) mutable
                                      {
                                          first.reset();
                                          second.reset();
                                          g_object_unref(native);
                                      }));
}
}  // namespace ipodkit
