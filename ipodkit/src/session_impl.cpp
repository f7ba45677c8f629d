#include "session_impl.h"

#include <QBXIpodShareMemory.h>

#include "context.h"
#include "gerror.h"
#include "requests.h"
#include "segment_probe.h"
#include "shared_vectors.h"

namespace ipodkit
{
namespace
{
constexpr char kDaemon[] = "org.freedesktop.DBus";
constexpr char kDaemonPath[] = "/org/freedesktop/DBus";
constexpr guint kRetryMilliseconds = 1000;

using WeakImpl = std::weak_ptr<Session::Impl>;

GMainContext* ContextOf(const SessionOptions& options)
{
    return g_main_context_ref(options.context != nullptr ? options.context : g_main_context_default());
}

WeakImpl* Weakly(const std::shared_ptr<Session::Impl>& session)
{
    return new WeakImpl(session);
}

// For callbacks that come once.
std::shared_ptr<Session::Impl> TakeSession(gpointer data)
{
    const std::unique_ptr<WeakImpl> weak(static_cast<WeakImpl*>(data));
    return weak->lock();
}

void DeleteWeak(gpointer data)
{
    delete static_cast<WeakImpl*>(data);
}

void DeleteWeakOfClosure(gpointer data, GClosure*)
{
    DeleteWeak(data);
}

// On a thread of GLib's pool.
void RunAside(std::function<void()> work)
{
    GTask* const task = g_task_new(nullptr, nullptr, nullptr, nullptr);
    g_task_set_task_data(task, new Handover(std::move(work)),
                         [](gpointer data) { delete static_cast<Handover*>(data); });
    g_task_run_in_thread(task,
                         [](GTask* self, gpointer, gpointer data, GCancellable*)
                         {
                             static_cast<Handover*>(data)->Do();
                             g_task_return_boolean(self, TRUE);
                         });
    g_object_unref(task);
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
    m_publisher->Stop();
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
        if (self == nullptr || entry->target.greeted) return;
        entry->target.greeted = true;
        entry->Run(self->m_guard, [&] { entry->target.callback(self->CurrentConnection()); });
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
        const bool same = m_published.phase == phase && m_published.generation == m_generation;
        if (same && !m_published.error && !connection.error) return;
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

// Whoever does not answer would block the core's InitInstance(), and with it this thread.
void Session::Impl::Ping()
{
    MakeCommands().PlayStatus().Start(
        [weak = weak_from_this(), generation = m_generation](const Result<iPodPlayerPlayStatus>& status)
        {
            const auto self = weak.lock();
            if (self == nullptr || !self->Present(generation)) return;
            if (status || status.error().kind != ErrorKind::TimedOut) return self->Answered();
            self->SetConnection(Phase::Connecting, status.error());
            self->Ping();
        });
}

void Session::Impl::Answered()
{
    if (CoreLink::Instance().Attached())
        Attached();
    else
        Probe();
}

// Waiting for locks and creators of shared memory is done on another thread.
void Session::Impl::Probe()
{
    const auto tell = [weak = weak_from_this(), generation = m_generation](const std::optional<Error>& error)
    {
        const auto self = weak.lock();
        if (self != nullptr && self->Present(generation)) self->Probed(error);
    };
    const std::shared_ptr<GMainContext> context(g_main_context_ref(m_context.get()), g_main_context_unref);
    RunAside([tell, context] { Post(context.get(), [tell, error = ProbeSegments()] { tell(error); }); });
}

void Session::Impl::Probed(const std::optional<Error>& error)
{
    const std::optional<Error> failure = error ? error : CoreLink::Instance().Attach();
    if (!failure) return Attached();
    SetConnection(Phase::Connecting, failure);
    RetryLater(&Impl::Probe);
}

void Session::Impl::Attached()
{
    if (!m_listening) CoreLink::Instance().Add(&m_queue);
    m_listening = true;
    if (CoreLink::Instance().Connect())
        ReadAll();
    else
        RetryLater(&Impl::Ping);
}

template <class T, class Apply>
void Session::Impl::Read(Request<T> request, Apply apply)
{
    ++m_reading;
    std::move(request).Start(
        [weak = weak_from_this(), generation = m_generation, apply](const Result<T>& result)
        {
            const auto self = weak.lock();
            if (self == nullptr || !self->Present(generation)) return;
            self->Replay();
            if (result) std::invoke(apply, self->m_draft, *result);
            self->ReadEnded();
        });
}

// What the service refuses stays unknown.
void Session::Impl::ReadAll()
{
    const ipodkit::Commands commands = MakeCommands();
    m_reading = 0;
    Read(commands.CurrentTrack(), &StateDraft::SetTrack);
    Read(commands.PlayingIndex(), &StateDraft::SetTrackIndex);
    Read(commands.PlayStatus(), &StateDraft::SetStatus);
    Read(commands.Position(), &StateDraft::SetPosition);
    Read(commands.Shuffle(), &StateDraft::SetShuffle);
    Read(commands.Repeat(), &StateDraft::SetRepeat);
    Read(commands.PlayingCount(), &StateDraft::SetQueueSize);
    Read(commands.DeviceCount(), &StateDraft::SetDeviceCount);
    Read(commands.IpodName(), &StateDraft::SetDeviceName);
    Read(commands.ForegroundApp(), &StateDraft::SetForegroundApp);
    Read(commands.CarPlayStatus(), &StateDraft::SetCarPlay);
    Read(commands.CarLifeStatus(), &StateDraft::SetCarLife);
    Read(AskForArtwork(m_bus, m_options.deadline), [this](StateDraft&, const PictureHead& head) { TakeArtwork(head); });
}

void Session::Impl::ReadEnded()
{
    if (--m_reading > 0) return;
    SetConnection(Phase::Ready);
    m_publisher->GoLive(m_generation);
}

// A track that came without a picture may have one all the same. Ready has just read it.
void Session::Impl::Published(Fields changed)
{
    const bool fresh = changed.Has(Field::Track) && !changed.Has(Field::Connection);
    if (fresh && m_draft.State().track && m_draft.State().artwork == nullptr) FetchArtwork();
}

// One at a time, however fast the tracks change.
void Session::Impl::FetchArtwork()
{
    m_artworkOutdated = m_fetchingArtwork;
    if (m_fetchingArtwork) return;
    m_fetchingArtwork = true;
    AskForArtwork(m_bus, m_options.deadline)
        .Start(
            [weak = weak_from_this(), generation = m_generation](const Result<PictureHead>& head)
            {
                const auto self = weak.lock();
                if (self == nullptr) return;
                self->m_fetchingArtwork = false;
                if (self->Present(generation)) self->ArtworkArrived(head);
            });
}

void Session::Impl::ArtworkArrived(const Result<PictureHead>& head)
{
    Replay();
    if (m_artworkOutdated) return FetchArtwork();
    if (!head || m_draft.State().artwork != nullptr) return;
    TakeArtwork(*head);
    m_publisher->Touch();
}

void Session::Impl::TakeArtwork(const PictureHead& head)
{
    auto bytes = head[0] == 0 ? BytesIn(g_VecArtworkBufferShareMemory) : std::nullopt;
    m_draft.SetArtwork(bytes ? m_pictures.Put(std::move(*bytes)) : nullptr);
}

void Session::Impl::Replay()
{
    const auto self = shared_from_this();
    while (!m_queue.Empty())
    {
        const EventQueue::Event event = m_queue.Take();
        event(m_draft);
        event(m_lanes);
        m_publisher->Touch();
        m_listeners.ForEach(m_guard, [&event](IQBXIpodPlayerListener* listener) { event(*listener); });
    }
}
}  // namespace ipodkit
