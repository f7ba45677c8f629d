#include "session/session_impl.h"

#include <cstring>

#include "loop/context.h"
#include "session/weak_session.h"

namespace ipodkit
{
namespace
{
constexpr guint kRetryMilliseconds = 1000;

GMainContext* ContextOf(const SessionOptions& options)
{
    return g_main_context_ref(options.context != nullptr ? options.context : g_main_context_default());
}

bool IsSame(const std::optional<Error>& one, const std::optional<Error>& other)
{
    if (!one || !other) return one.has_value() == other.has_value();
    return one->kind == other->kind && one->reason == other->reason;
}

// An attempt that fails as the one before did is no step.
bool IsSame(const Connection& one, const Connection& other)
{
    return one.phase == other.phase && one.generation == other.generation && IsSame(one.error, other.error);
}
}  // namespace

Session::Impl::Impl(const SessionOptions& options)
    : m_options(options),
      m_context(ContextOf(options)),
      m_guard(options.callbackBudget),
      m_bus(std::make_shared<detail::Bus>(m_context.get(), m_guard)),
      m_queue(
          [this]
          {
              Post(m_context.get(),
                   [weak = weak_from_this()]
                   {
                       if (const auto self = weak.lock()) self->Replay();
                   });
          }),
      m_lanes(m_guard),
      m_pictures(options.artworkLimit),
      m_draft(m_pictures),
      m_publisher(std::make_shared<Publisher>(m_context.get(), m_guard, options.settle, m_draft,
                                              [this](Fields changed) { Published(changed); }))
{
}

void Session::Impl::Start()
{
    m_bus->OnFollowed(
        [weak = weak_from_this()](const char* method)
        {
            if (const auto self = weak.lock()) self->Followed(method);
        });
    Post(m_context.get(),
         [weak = weak_from_this()]
         {
             if (const auto self = weak.lock()) self->GetBus();
         });
}

void Session::Impl::Close()
{
    m_owner.clear();
    m_retry.reset();
    m_publisher->End();
    m_connectionTargets.End();
    m_listeners.End();
    m_lanes.End();
    m_endings.ForEach(m_guard, [](const std::function<void()>& ended) { ended(); });
    if (m_connection != nullptr)
    {
        g_dbus_connection_signal_unsubscribe(m_connection.get(), m_ownerSubscription);
        g_signal_handler_disconnect(m_connection.get(), m_closedHandler);
    }
    if (m_listening) CoreLink::Instance().Remove(&m_queue);
    CoreLink::Instance().Release();
    m_bus->Close();
}

ipodkit::Connection Session::Impl::CurrentConnection() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_published;
}

Subscription Session::Impl::OnConnection(std::string name, ConnectionCallback callback)
{
    auto entry = m_connectionTargets.Add(std::move(name), ConnectionTarget{std::move(callback), false});
    const auto greet = [weak = weak_from_this(), entry]
    {
        const auto self = weak.lock();
        if (self == nullptr) return;
        entry->Run(self->m_guard,
                   [&](ConnectionTarget& target)
                   {
                       if (!std::exchange(target.greeted, true)) target.callback(self->CurrentConnection());
                   });
    };
    Post(m_context.get(), greet);
    return Subscription(entry);
}

Subscription Session::Impl::Listen(std::string name, IQBXIpodPlayerListener& listener)
{
    return Subscription(m_listeners.Add(std::move(name), &listener));
}

void Session::Impl::SetConnection(Phase phase, std::optional<Error> error)
{
    const ipodkit::Connection connection{phase, m_generation, std::move(error)};
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (IsSame(m_published, connection)) return;
        m_published = connection;
    }
    m_connectionTargets.ForEach(m_guard,
                                [&](ConnectionTarget& target)
                                {
                                    target.greeted = true;
                                    target.callback(connection);
                                });
}

void Session::Impl::RetryLater(void (Impl::*step)())
{
    using Retry = std::pair<WeakImpl, void (Impl::*)()>;
    m_retry.reset(g_timeout_source_new(kRetryMilliseconds));
    const GSourceFunc run = [](gpointer data) -> gboolean
    {
        const auto& [weak, todo] = *static_cast<Retry*>(data);
        const auto self = weak.lock();
        const auto next = todo;
        if (self != nullptr) (self.get()->*next)();
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(m_retry.get(), run, new Retry(weak_from_this(), step),
                          [](gpointer data) { delete static_cast<Retry*>(data); });
    g_source_attach(m_retry.get(), m_context.get());
}

// No event tells that another device is browsed now.
void Session::Impl::Followed(const char* method)
{
    m_lanes.Happened(method);
    if (std::strcmp(method, "EnterDeviceChildList") == 0) DevicesChanged();
}

void Session::Impl::Replay()
{
    const auto self = shared_from_this();
    while (!m_queue.Empty())
    {
        const EventQueue::Event event = m_queue.Take();
        event(m_draft);
        event(m_lanes);
        event(m_deviceWatch);
        m_publisher->Touch();
        m_listeners.ForEach(m_guard, [&event](IQBXIpodPlayerListener* listener) { event(*listener); });
    }
}
}  // namespace ipodkit
