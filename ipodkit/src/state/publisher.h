/// @file
/// From the draft to the values that applications see.
#pragma once

#include <ipodkit/session.h>

#include <mutex>

#include "loop/settle_timer.h"
#include "loop/slot.h"
#include "state/state_draft.h"

namespace ipodkit
{
/// Subscribe() and Published() may be called on any thread, the rest on the context thread.
class Publisher : public std::enable_shared_from_this<Publisher>
{
public:
    /// @p published is told what each published value changed, before the subscribers are.
    Publisher(GMainContext* context, const Guard& guard, std::chrono::microseconds settle, const StateDraft& draft,
              std::function<void(Fields)> published);

    StatePtr Published() const;
    Subscription Subscribe(std::string name, Session::StateCallback callback, Fields fields);

    /// Something may have changed: publishes the draft when the time has come. Ignored unless live.
    void Touch();

    /// Publishes the draft, and follows it from now on.
    void GoLive(std::uint32_t generation);

    /// Publishes the last value with another phase, and stops following the draft.
    void Freeze(Phase phase, std::uint32_t generation);

    /// Publishes nothing more, and ends the subscriptions.
    void End();

private:
    struct Target
    {
        Session::StateCallback callback;
        Fields fields;
        bool greeted;
    };

    void Stop();
    void PublishDraft();
    void Publish(PlayerState state);
    void Deliver(Target& target, const StatePtr& state, Fields changed);

    const ContextPtr m_context;
    const Guard m_guard;
    const std::chrono::microseconds m_settle;
    const StateDraft& m_draft;
    const std::function<void(Fields)> m_onPublished;
    SettleTimer m_timer;
    Registry<Target> m_targets;
    std::uint32_t m_generation = 0;
    bool m_live = false;
    mutable std::mutex m_mutex;  // guards what is published
    StatePtr m_published = std::make_shared<const PlayerState>();
};
}  // namespace ipodkit
