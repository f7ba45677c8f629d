#include "state/publisher.h"

#include "loop/context.h"

namespace ipodkit
{
Connection ConnectionOf(const PlayerState& state)
{
    return {state.phase, state.generation, state.error, state.missing};
}

Publisher::Publisher(GMainContext* context, const Guard& guard, std::chrono::microseconds settle,
                     const StateDraft& draft, std::function<void(Fields)> published)
    : m_context(g_main_context_ref(context)),
      m_guard(guard),
      m_settle(settle),
      m_draft(draft),
      m_onPublished(std::move(published)),
      m_timer(context, [this] { PublishNext(m_draft.State()); })
{
}

StatePtr Publisher::Published() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_published;
}

Subscription Publisher::Subscribe(std::string name, Session::StateCallback callback, Fields fields)
{
    auto entry = m_targets.Add(std::move(name), Target{std::move(callback), fields, false});
    Post(m_context.get(),
         [weak = weak_from_this(), entry]
         {
             const auto self = weak.lock();
             if (self == nullptr) return;
             entry->Run(self->m_guard, [&](Target& target) { self->Deliver(target, self->Published(), {}); });
         });
    return Subscription(entry);
}

void Publisher::Touch()
{
    if (m_connection.phase != Phase::Ready) return;
    if (m_settle.count() > 0)
        m_timer.Start(m_settle);
    else
        PublishNext(m_draft.State());
}

void Publisher::Flush()
{
    if (m_connection.phase != Phase::Ready) return;
    m_timer.Stop();
    PublishNext(m_draft.State());
}

// Calls and accessory sessions end with the service.
void Publisher::Publish(const Connection& connection)
{
    m_timer.Stop();
    m_connection = connection;
    const bool ready = connection.phase == Phase::Ready;
    PlayerState state = ready ? m_draft.State() : *Published();
    if (!ready) state.calls.clear();
    if (!ready) state.accessorySessions.clear();
    if (!ready) state.remembered = state.remembered.Without(Field::Calls | Field::AccessorySessions);
    PublishNext(std::move(state));
}

void Publisher::Replace(PlayerState state)
{
    m_timer.Stop();
    m_connection = ConnectionOf(state);
    PublishNext(std::move(state));
}

void Publisher::End()
{
    m_connection.phase = Phase::Lost;
    m_timer.Stop();
    m_targets.End();
}

// A subscriber may destroy the session, and with it all owners of the publisher.
void Publisher::PublishNext(PlayerState state)
{
    const auto self = shared_from_this();
    const StatePtr last = Published();
    state.phase = m_connection.phase;
    state.generation = m_connection.generation;
    state.error = m_connection.error;
    state.missing = m_connection.missing;
    const Fields changed = Differences(*last, state);
    if (changed.Empty()) return;
    state.version = last->version + 1;
    const StatePtr next = std::make_shared<const PlayerState>(std::move(state));
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_published = next;
    }
    m_onPublished(changed);
    m_targets.ForEach(m_guard, [&](Target& target) { Deliver(target, next, changed); });
}

// A new subscriber gets the whole state once, which includes what has changed meanwhile.
void Publisher::Deliver(Target& target, const StatePtr& state, Fields changed)
{
    if (!target.greeted)
    {
        target.greeted = true;
        target.callback(state, Fields::All());
    }
    else if (!(changed & target.fields).Empty())
        target.callback(state, changed);
}
}  // namespace ipodkit
