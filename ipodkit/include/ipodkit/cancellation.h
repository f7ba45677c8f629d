/// @file
/// Withdrawing requests.
#pragma once

#include <memory>
#include <utility>

#pragma GCC visibility push(default)

struct _GCancellable;  // NOLINT(bugprone-reserved-identifier): GLib's own name

namespace ipodkit
{
/// A switch that can be thrown once. Copies are the same switch; one may serve many requests. Any thread may use it.
///
///     Cancellation stop;
///     commands.Next().CancelledBy(stop).Start(…);
///     stop.Cancel();   // the completion comes with ErrorKind::Cancelled; the service may have acted all the same
class Cancellation
{
public:
    Cancellation();

    void Cancel() const;
    bool Cancelled() const;

    /// A switch that is thrown as soon as one of the two is.
    static Cancellation Either(const Cancellation& one, const Cancellation& other);

    /// For GLib functions; owned by this object.
    _GCancellable* Native() const { return m_native.get(); }

private:
    explicit Cancellation(std::shared_ptr<_GCancellable> native) : m_native(std::move(native)) {}

    std::shared_ptr<_GCancellable> m_native;
};
}  // namespace ipodkit

#pragma GCC visibility pop
