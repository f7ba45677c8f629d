#include "session/owner_watch.h"

#include "loop/context.h"
#include "loop/weak_data.h"

namespace ipodkit
{
namespace
{
constexpr char kDaemon[] = "org.freedesktop.DBus";
constexpr char kDaemonPath[] = "/org/freedesktop/DBus";
constexpr guint kReconnectMilliseconds = 1000;
}  // namespace

OwnerWatch::OwnerWatch(GMainContext* context, bool activateService, Listener listener)
    : m_context(g_main_context_ref(context)), m_activateService(activateService), m_listener(std::move(listener))
{
}

void OwnerWatch::Start()
{
    GetBus();
}

void OwnerWatch::Stop()
{
    m_stopped = true;
    m_later.reset();
    Disconnect();
}

void OwnerWatch::GetBus()
{
    const DefaultContext delivered(m_context.get());
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, OnBus, Weakly(shared_from_this()));
}

// GLib returns its shared connection while anyone holds a reference, even when it is closed.
void OwnerWatch::OnBus(GObject*, GAsyncResult* result, gpointer data)
{
    GError* failure = nullptr;
    ConnectionPtr connection(g_bus_get_finish(result, &failure));
    const ErrorPtr error(failure);
    const auto self = TakeWeak<OwnerWatch>(data);
    if (self == nullptr || self->m_stopped) return;
    if (connection != nullptr && g_dbus_connection_is_closed(connection.get())) return self->GetAnotherBus();
    self->Take(std::move(connection), error);
}

void OwnerWatch::GetAnotherBus()
{
    GError* failure = nullptr;
    const std::unique_ptr<gchar, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, &failure), g_free);
    const ErrorPtr error(failure);
    if (address == nullptr) return Take(nullptr, error);
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const DefaultContext delivered(m_context.get());
    g_dbus_connection_new_for_address(address.get(), flags, nullptr, nullptr, OnAnotherBus, Weakly(shared_from_this()));
}

void OwnerWatch::OnAnotherBus(GObject*, GAsyncResult* result, gpointer data)
{
    GError* failure = nullptr;
    ConnectionPtr connection(g_dbus_connection_new_for_address_finish(result, &failure));
    const ErrorPtr error(failure);
    if (const auto self = TakeWeak<OwnerWatch>(data)) self->Take(std::move(connection), error);
}

void OwnerWatch::Take(ConnectionPtr connection, const ErrorPtr& error)
{
    if (m_stopped) return;
    if (connection == nullptr)
    {
        m_listener.disconnected({ErrorKind::NoBus, error->message});
        return Later(&OwnerWatch::GetBus);
    }
    m_connection = std::move(connection);
    Subscribe();
    m_listener.connected(m_connection.get());
    if (m_stopped) return;
    CallDaemon("GetNameOwner", g_variant_new("(s)", kBusName), "(s)", OnOwner);
    if (g_dbus_connection_is_closed(m_connection.get())) Closed();
}

// Subscribes to the signals of any sender; OnSignal() compares the sender with the owner, whose changes arrive in
// order with the signals. If subscribed by name, GLib would drop the first signals of a new owner.
void OwnerWatch::Subscribe()
{
    const DefaultContext delivered(m_context.get());
    GDBusConnection* const connection = m_connection.get();
    const auto weak = [this] { return Weakly(shared_from_this()); };
    m_closedHandler = g_signal_connect_data(
        connection, "closed", G_CALLBACK(OnClosed), weak(),
        [](gpointer data, GClosure*) { DeleteWeak<OwnerWatch>(data); }, static_cast<GConnectFlags>(0));
    m_ownerSubscription =
        g_dbus_connection_signal_subscribe(connection, kDaemon, kDaemon, "NameOwnerChanged", kDaemonPath, kBusName,
                                           G_DBUS_SIGNAL_FLAGS_NONE, OnOwnerChanged, weak(), DeleteWeak<OwnerWatch>);
    m_signalSubscription =
        g_dbus_connection_signal_subscribe(connection, nullptr, kBusName, nullptr, kObjectPath, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, OnSignal, weak(), DeleteWeak<OwnerWatch>);
}

void OwnerWatch::CallDaemon(const char* method, GVariant* arguments, const char* replyType,
                            GAsyncReadyCallback callback)
{
    const DefaultContext delivered(m_context.get());
    g_dbus_connection_call(m_connection.get(), kDaemon, kDaemonPath, kDaemon, method, arguments,
                           G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, callback,
                           Weakly(shared_from_this()));
}

// An error reply means that there is no owner.
void OwnerWatch::OnOwner(GObject* connection, GAsyncResult* result, gpointer data)
{
    const VariantPtr reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr));
    const auto self = TakeWeak<OwnerWatch>(data);
    if (self == nullptr) return;
    if (reply == nullptr) return self->StartService();
    const gchar* owner = nullptr;
    g_variant_get(reply.get(), "(&s)", &owner);
    self->OwnerIs(owner);
}

void OwnerWatch::StartService()
{
    if (!m_activateService || m_connection == nullptr || !m_owner.empty()) return;
    CallDaemon("StartServiceByName", g_variant_new("(su)", kBusName, 0U), "(u)", OnStarted);
}

void OwnerWatch::OnStarted(GObject* connection, GAsyncResult* result, gpointer data)
{
    GError* failure = nullptr;
    const VariantPtr reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &failure));
    const ErrorPtr error(failure);
    const auto self = TakeWeak<OwnerWatch>(data);
    if (self == nullptr || self->m_stopped || reply != nullptr || !self->m_owner.empty()) return;
    self->m_listener.notStarted({ErrorKind::NoService, error->message});
    self->Later(&OwnerWatch::StartService);
}

void OwnerWatch::OnOwnerChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                                GVariant* arguments, gpointer data)
{
    const auto self = LockWeak<OwnerWatch>(data);
    if (self == nullptr || !g_variant_is_of_type(arguments, G_VARIANT_TYPE("(sss)"))) return;
    const gchar* owner = nullptr;
    g_variant_get(arguments, "(&s&s&s)", nullptr, nullptr, &owner);
    self->OwnerIs(owner);
}

void OwnerWatch::OwnerIs(const std::string& owner)
{
    if (m_stopped || owner == m_owner) return;
    m_owner = owner;
    m_listener.ownerChanged(owner);
    if (!m_stopped && m_activateService && m_owner.empty()) Later(&OwnerWatch::StartService);
}

void OwnerWatch::OnSignal(GDBusConnection*, const gchar* sender, const gchar*, const gchar*, const gchar* signal,
                          GVariant* body, gpointer data)
{
    const auto self = LockWeak<OwnerWatch>(data);
    if (self != nullptr && sender != nullptr && self->m_owner == sender) self->m_listener.signalled(signal, body);
}

// Emitted on any thread.
void OwnerWatch::OnClosed(GDBusConnection*, gboolean, GError*, gpointer data)
{
    const auto self = LockWeak<OwnerWatch>(data);
    if (self == nullptr) return;
    Post(self->m_context.get(),
         [weak = std::weak_ptr<OwnerWatch>(self)]
         {
             const auto watch = weak.lock();
             if (watch != nullptr && watch->m_connection != nullptr) watch->Closed();
         });
}

void OwnerWatch::Closed()
{
    Disconnect();
    OwnerIs("");
    if (m_stopped) return;
    m_listener.disconnected({ErrorKind::NoBus, "the connection to the session bus was closed"});
    Later(&OwnerWatch::GetBus);
}

void OwnerWatch::Disconnect()
{
    if (m_connection == nullptr) return;
    g_dbus_connection_signal_unsubscribe(m_connection.get(), m_ownerSubscription);
    g_dbus_connection_signal_unsubscribe(m_connection.get(), m_signalSubscription);
    g_signal_handler_disconnect(m_connection.get(), m_closedHandler);
    m_connection.reset();
}

void OwnerWatch::Later(void (OwnerWatch::*step)())
{
    if (m_stopped) return;
    m_later = After(m_context.get(), kReconnectMilliseconds,
                    [weak = weak_from_this(), step]
                    {
                        if (const auto self = weak.lock()) (self.get()->*step)();
                    });
}
}  // namespace ipodkit
