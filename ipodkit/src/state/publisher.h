/// @file
/// Publishes the draft to applications, as immutable states.
#pragma once

#include <ipodkit/session.h>

#include <mutex>

#include "loop/settle_timer.h"
#include "loop/slot.h"
#include "state/state_draft.h"

namespace ipodkit
{
/// Returns the connection as the state describes it.
Connection ConnectionOf(const PlayerState& state);

/// Subscribe() and Published() may be called on any thread, the rest on the context thread.
class Publisher : public std::enable_shared_from_this<Publisher>
{
public:
    /// @param published  called with the fields that each published state changed, before the subscribers are
    Publisher(GMainContext* context, const Guard& guard, std::chrono::microseconds settle, const StateDraft& draft,
              std::function<void(Fields)> published);

    StatePtr Published() const;
    Subscription Subscribe(std::string name, Session::StateCallback callback, Fields fields);

    /// Call this when the draft may have changed: publishes it after the settle time. Ignored unless the phase is
    /// Ready.
    void Touch();

    /// Publishes the draft now instead of after the settle time. Ignored unless the phase is Ready.
    void Flush();

    /// Publishes a step of the connection at once: with the draft if it is Ready, else with the last known state.
    void Publish(const Connection& connection);

    /// Publishes a state unchanged, regardless of the draft.
    void Replace(PlayerState state);

    /// Publishes nothing more, and ends the subscriptions.
    void End();

private:
    struct Target
    {
        Session::StateCallback callback;
        Fields fields;
        bool greeted;
    };

    void PublishNext(PlayerState state);
    void Deliver(Target& target, const StatePtr& state, Fields changed);

    const ContextPtr m_context;
    const Guard m_guard;
    const std::chrono::microseconds m_settle;
    const StateDraft& m_draft;
    const std::function<void(Fields)> m_onPublished;
    SettleTimer m_timer;
    Registry<Target> m_targets;
    Connection m_connection;
    mutable std::mutex m_mutex;  // guards m_published
    StatePtr m_published = std::make_shared<const PlayerState>();
};
}  // namespace ipodkit
