/// @file
/// Cancelling requests.
#pragma once

#include <memory>
#include <utility>

#pragma GCC visibility push(default)

struct _GCancellable;  // NOLINT(bugprone-reserved-identifier): GLib's own name

namespace ipodkit
{
/// Cancels requests, once and for good. Copies share one state; one cancellation may serve many requests. Any thread
/// may use it. Nothing blocks.
///
///     Cancellation stop;
///     commands.Next().CancelledBy(stop).Start(…);
///     stop.Cancel();   // completes with ErrorKind::Cancelled; the service may still act on it
class Cancellation
{
public:
    Cancellation();

    /// Withdraws the requests; each completes soon, in its session's context. Further calls do nothing.
    void Cancel() const;

    /// Returns whether Cancel() was called.
    bool Cancelled() const;

    /// Returns a cancellation that follows both: it is cancelled when either is. It cancels neither.
    static Cancellation Either(const Cancellation& one, const Cancellation& other);

    /// For GLib functions; owned by this object.
    _GCancellable* Native() const { return m_native.get(); }

private:
    explicit Cancellation(std::shared_ptr<_GCancellable> native) : m_native(std::move(native)) {}

    std::shared_ptr<_GCancellable> m_native;
};
}  // namespace ipodkit

#pragma GCC visibility pop
