#include "state/publisher.h"

#include "loop/context.h"

namespace ipodkit
{
Publisher::Publisher(GMainContext* context, const Guard& guard, std::chrono::microseconds settle,
                     const StateDraft& draft, std::function<void(Fields)> published)
    : m_context(g_main_context_ref(context)),
      m_guard(guard),
      m_settle(settle),
      m_draft(draft),
      m_onPublished(std::move(published)),
      m_timer(context, [this] { PublishDraft(); })
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
    if (m_live) m_timer.Start(m_settle);
}

void Publisher::GoLive(std::uint32_t generation)
{
    m_live = true;
    m_generation = generation;
    PublishDraft();
}

// Calls and accessory sessions live in the service: they end with it.
void Publisher::Freeze(Phase phase, std::uint32_t generation)
{
    Stop();
    PlayerState state = *Published();
    state.phase = phase;
    state.generation = generation;
    state.calls.clear();
    state.accessorySessions.clear();
    Publish(std::move(state));
}

void Publisher::End()
{
    Stop();
    m_targets.End();
}

void Publisher::Stop()
{
    m_live = false;
    m_timer.Stop();
}

void Publisher::PublishDraft()
{
    if (!m_live) return;
    m_timer.Stop();
    PlayerState state = m_draft.State();
    state.phase = Phase::Ready;
    state.generation = m_generation;
    Publish(std::move(state));
}

// A subscriber may end the session, and with it all that holds the publisher.
void Publisher::Publish(PlayerState state)
{
    const auto self = shared_from_this();
    const StatePtr last = Published();
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

// Whoever is new gets everything, once; whatever changed meanwhile is part of it.
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
