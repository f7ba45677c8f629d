// The bus, and who owns the service's name on it.
#include "bus/gerror.h"
#include "loop/context.h"
#include "session/weak_session.h"

namespace ipodkit
{
namespace
{
constexpr char kDaemon[] = "org.freedesktop.DBus";
constexpr char kDaemonPath[] = "/org/freedesktop/DBus";
}  // namespace

void Session::Impl::GetBus()
{
    const DefaultContext delivered(m_context.get());
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, OnBus, Weakly(shared_from_this()));
}

void Session::Impl::OnBus(GObject*, GAsyncResult* result, gpointer data)
{
    GError* failure = nullptr;
    const ConnectionPtr connection(g_bus_get_finish(result, &failure));
    const ErrorPtr error(failure);
    const auto self = TakeSession(data);
    if (self == nullptr) return;
    if (connection != nullptr) return self->HaveBus(connection.get());
    const Error noBus{ErrorKind::NoBus, error->message};
    self->m_bus->Unconnected(noBus);
    self->SetConnection(Phase::Absent, noBus);
    self->RetryLater(&Impl::GetBus);
}

void Session::Impl::HaveBus(GDBusConnection* connection)
{
    m_connection.reset(G_DBUS_CONNECTION(g_object_ref(connection)));
    m_closedHandler = g_signal_connect_data(connection, "closed", G_CALLBACK(OnClosed), Weakly(shared_from_this()),
                                            DeleteWeakOfClosure, static_cast<GConnectFlags>(0));
    m_bus->Connected(connection);
    SetConnection(Phase::Absent);
    WatchOwner();
    if (g_dbus_connection_is_closed(connection)) BusClosed();
}

// The changes first, then the present owner: whatever comes in between is heard in the right order.
void Session::Impl::WatchOwner()
{
    const DefaultContext delivered(m_context.get());
    m_ownerSubscription = g_dbus_connection_signal_subscribe(m_connection.get(), kDaemon, kDaemon, "NameOwnerChanged",
                                                             kDaemonPath, kBusName, G_DBUS_SIGNAL_FLAGS_NONE,
                                                             OnOwnerChanged, Weakly(shared_from_this()), DeleteWeak);
    g_dbus_connection_call(m_connection.get(), kDaemon, kDaemonPath, kDaemon, "GetNameOwner",
                           g_variant_new("(s)", kBusName), G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                           OnNameOwner, Weakly(shared_from_this()));
}

void Session::Impl::OnOwnerChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                                   GVariant* arguments, gpointer data)
{
    const auto self = static_cast<WeakImpl*>(data)->lock();
    if (self == nullptr || !g_variant_is_of_type(arguments, G_VARIANT_TYPE("(sss)"))) return;
    const gchar* owner = nullptr;
    g_variant_get(arguments, "(&s&s&s)", nullptr, nullptr, &owner);
    self->OwnerIs(owner);
}

// An error says that there is none.
void Session::Impl::OnNameOwner(GObject* connection, GAsyncResult* result, gpointer data)
{
    GVariant* const reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr);
    const auto self = TakeSession(data);
    if (reply == nullptr) return;
    const gchar* owner = nullptr;
    g_variant_get(reply, "(&s)", &owner);
    if (self != nullptr) self->OwnerIs(owner);
    g_variant_unref(reply);
}

// The closing of the bus is told on any thread.
void Session::Impl::OnClosed(GDBusConnection*, gboolean, GError*, gpointer data)
{
    const WeakImpl weak = *static_cast<WeakImpl*>(data);
    const auto self = weak.lock();
    if (self == nullptr) return;
    Post(self->m_context.get(),
         [weak]
         {
             if (const auto session = weak.lock()) session->BusClosed();
         });
}

void Session::Impl::BusClosed()
{
    const Error noBus{ErrorKind::NoBus, "the session bus went away"};
    m_bus->Unconnected(noBus);
    OwnerIs("");
    SetConnection(CurrentConnection().phase, noBus);
}

void Session::Impl::OwnerIs(const std::string& owner)
{
    if (owner == m_owner) return;
    Replay();
    if (!m_owner.empty()) Vanished();
    m_owner = owner;
    if (!m_owner.empty()) Appeared();
}

void Session::Impl::Appeared()
{
    ++m_generation;
    m_draft.Reset();
    m_reading = 0;
    m_devicesChanged = false;
    SetConnection(Phase::Connecting);
    m_publisher->Freeze(Phase::Connecting, m_generation);
    Ping();
}

void Session::Impl::Vanished()
{
    m_owner.clear();
    m_retry.reset();
    SetConnection(Phase::Lost);
    m_lanes.OutdateAll();
    m_publisher->Freeze(Phase::Lost, m_generation);
}
}  // namespace ipodkit
