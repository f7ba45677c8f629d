#include "session/session_impl.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "loop/context.h"
#include "memory/segment_probe.h"
#include "session/signals.h"

namespace ipodkit
{
namespace
{
constexpr guint kAttachAgainMilliseconds = 1000;
constexpr auto kLongestPatience = std::chrono::seconds(2);  // with applications that hold a lock

// Shorter than the deadline, so that the request fails with an error that names the holder.
std::chrono::milliseconds PatienceOf(const SessionOptions& options)
{
    return std::min<std::chrono::milliseconds>(kLongestPatience, options.deadline * 3 / 4);
}

SessionOptions Limited(SessionOptions options)
{
    for (auto* const time : {&options.settle, &options.deadline, &options.callbackBudget})
        *time = std::min(*time, detail::kLongestDeadline);
    return options;
}

GMainContext* ContextOf(const SessionOptions& options)
{
    return g_main_context_ref(options.context != nullptr ? options.context : g_main_context_default());
}
}  // namespace

Session::Impl::Impl(const SessionOptions& options)
    : m_options(Limited(options)),
      m_context(ContextOf(options)),
      m_guard(m_options.callbackBudget),
      m_bus(std::make_shared<detail::Bus>(m_context.get(), m_guard)),
      m_queues(m_guard),
      m_leases(std::make_shared<Leases>(m_context.get(), PatienceOf(m_options))),
      m_pictures(options.artworkLimit),
      m_publisher(std::make_shared<Publisher>(m_context.get(), m_guard, m_options.settle, m_draft,
                                              [this](Fields changed) { Published(changed); })),
      m_reader(std::make_shared<StateReader>(m_context.get(), m_bus, m_options.deadline, m_draft, m_pictures,
                                             [this] { Progressed(); })),
      m_memory(std::make_shared<Memory>(m_context.get(), [this](const PlayerState& earlier) { Remember(earlier); }))
{
}

// An application's callback may destroy the session, which is kept alive until the event is handled.
template <class Method>
auto Session::Impl::Bound(Method method)
{
    return [weak = weak_from_this(), method](const auto&... arguments)
    {
        if (const auto self = weak.lock()) (self.get()->*method)(arguments...);
    };
}

void Session::Impl::Start()
{
    m_bus->OnFollowed(Bound(&Impl::Followed));
    m_watch = std::make_shared<OwnerWatch>(
        m_context.get(), m_options.activateService,
        OwnerWatch::Listener{Bound(&Impl::Connected), Bound(&Impl::Disconnected), Bound(&Impl::OwnerIs),
                             Bound(&Impl::NotStarted), Bound(&Impl::Signalled)});
    Post(m_context.get(), [watch = m_watch] { watch->Start(); });
}

void Session::Impl::Close()
{
    m_closed = true;
    if (m_watch != nullptr) m_watch->Stop();
    m_reader->Stop();
    m_memory->Stop();
    m_retry.reset();
    m_publisher->End();
    m_eventCallbacks.End();
    m_queues.End();
    m_leases->Close();
    m_endings.ForEach(m_guard, [](const std::function<void()>& ended) { ended(); });
    if (m_watch != nullptr) CoreLink::Instance().Release();
    m_bus->Close();
}

ipodkit::Connection Session::Impl::CurrentConnection() const
{
    return ConnectionOf(*m_publisher->Published());
}

Subscription Session::Impl::OnEvent(std::string name, EventCallback callback)
{
    return Subscription(m_eventCallbacks.Add(std::move(name), std::move(callback)));
}

void Session::Impl::Refresh(Fields fields)
{
    Post(m_context.get(),
         [weak = weak_from_this(), fields]
         {
             const auto self = weak.lock();
             if (self != nullptr && !self->m_closed) self->m_reader->Refresh(fields);
         });
}

void Session::Impl::Refresh(Fields fields, const PendingPtr<StatePtr>& request)
{
    if (m_phase != Phase::Ready && !m_reader->Started())
    {
        const Error unconnected{ErrorKind::NoService, "the session is not connected to the service"};
        return request->Settle(tl::unexpected(CurrentConnection().error.value_or(unconnected)));
    }
    m_reader->Refresh(fields);
    m_refreshes.push_back({fields, request});
    SettleRefreshes();
}

void Session::Impl::Step(Phase phase, std::optional<Error> error, Fields missing)
{
    if (phase != m_phase) LogDebug(std::string("session ") + Name(phase) + ", service " + std::to_string(m_generation));
    m_phase = phase;
    m_publisher->Publish({phase, m_generation, std::move(error), missing});
}

void Session::Impl::Connected(GDBusConnection* connection)
{
    m_bus->Connected(connection);
    m_memory->Connected(connection);
    Step(m_phase);
}

void Session::Impl::Disconnected(const Error& error)
{
    m_bus->Unconnected(error);
    Step(m_phase, error);
}

void Session::Impl::NotStarted(const Error& error)
{
    Step(m_phase, error);
}

// A service that another one replaces is lost, too.
void Session::Impl::OwnerIs(const std::string& owner)
{
    if (m_phase == Phase::Connecting || m_phase == Phase::Ready) Vanished();
    if (!owner.empty() && !m_closed) Appeared(owner);
}

void Session::Impl::Appeared(const std::string& service)
{
    ++m_generation;
    m_draft.Reset(service);
    m_memory->Ask(service);
    Step(Phase::Connecting);
    if (!m_closed) Attach();
}

void Session::Impl::Vanished()
{
    m_reader->Stop();
    m_memory->Stop();
    m_retry.reset();
    m_draft.ForgetService();
    Step(Phase::Lost);
    m_queues.OutdateAll();
    std::exchange(m_serviceEnd, {}).Cancel();
    for (const PendingRefresh& each : std::exchange(m_refreshes, {}))
        if (const auto request = each.request.lock()) request->Settle(tl::unexpected(detail::kServiceLost));
}

// Probing runs on another thread, because it waits for processes that create the segments and for locks of dead ones.
// Attaching runs on this one: on another, the process might exit and destroy the core's static objects meanwhile.
void Session::Impl::Attach()
{
    if (CoreLink::Instance().Player() != nullptr) return Attached(std::nullopt);
    const auto probed = [weak = weak_from_this(), generation = m_generation](const std::optional<Error>& error)
    {
        const auto self = weak.lock();
        if (self != nullptr && self->m_phase == Phase::Connecting && generation == self->m_generation)
            self->Attached(error ? error : CoreLink::Instance().Attach());
    };
    const std::shared_ptr<GMainContext> context(g_main_context_ref(m_context.get()), g_main_context_unref);
    RunAside([probed, context] { Post(context.get(), [probed, error = ProbeSegments()] { probed(error); }); });
}

void Session::Impl::Attached(const std::optional<Error>& error)
{
    if (!error) return m_reader->Start();
    Step(Phase::Connecting, error);
    m_retry = After(m_context.get(), kAttachAgainMilliseconds, [this] { Attach(); });
}

void Session::Impl::Remember(const PlayerState& earlier)
{
    m_draft.Remember(earlier);
    m_publisher->Touch();
}

void Session::Impl::Signalled(const char* signal, GVariant* body)
{
    const std::optional<Event> event = Decode(signal, body, m_pictures);
    if (event) Follow(*event);
}

void Session::Impl::Follow(const Event& event)
{
    m_draft.Apply(event);
    m_memory->Follow(event);
    m_queues.OutdateBy(SignalName(event));
    if (std::holds_alternative<DeviceChanged>(event)) m_reader->ReadDevices();
    m_eventCallbacks.ForEach(m_guard, [&event](const EventCallback& callback) { callback(event); });
    m_publisher->Touch();
}

// No event reports that another device was entered.
void Session::Impl::Followed(const char* method)
{
    m_queues.OutdateBy(method);
    if (std::strcmp(method, "EnterDeviceChildList") == 0) m_reader->ReadDevices();
}

void Session::Impl::Progressed()
{
    const auto self = shared_from_this();
    m_publisher->Touch();
    ApplyProgress();
    SettleRefreshes();
}

// A service that has not answered any request is not usable yet; one that has answered some is.
void Session::Impl::ApplyProgress()
{
    const StateReader::Progress progress = m_reader->Progressed();
    const bool usable = m_phase == Phase::Ready || progress.answered;
    if (!progress.open.Empty()) return;
    std::optional<Error> error;
    const std::string unanswered = usable ? "no answer yet: " + Names(progress.missing) : "no request was answered";
    if (!progress.missing.Empty()) error = Error{ErrorKind::TimedOut, unanswered};
    const ipodkit::Connection now = CurrentConnection();
    const Phase phase = usable ? Phase::Ready : Phase::Connecting;
    if (now.phase == phase && now.error == error) return;
    Step(phase, std::move(error), usable ? progress.missing : Fields());
}

// Nothing is published before the whole state has been read once.
void Session::Impl::SettleRefreshes()
{
    const Fields open = m_reader->Progressed().open;
    const auto isOpen = [&](PendingRefresh& each)
    {
        each.open = m_phase == Phase::Ready ? each.open & open : open;
        return !each.open.Empty();
    };
    const auto read = std::stable_partition(m_refreshes.begin(), m_refreshes.end(), isOpen);
    if (read == m_refreshes.end()) return;
    const std::vector<PendingRefresh> complete(read, m_refreshes.end());
    m_refreshes.erase(read, m_refreshes.end());
    m_publisher->Flush();
    for (const PendingRefresh& each : complete)
        if (const auto request = each.request.lock()) request->Settle(m_publisher->Published());
}

// A track event without artwork does not mean that the track has none. A state that has just become Ready includes it.
void Session::Impl::Published(Fields changed)
{
    const bool fresh = changed.Has(Field::Track) && !changed.Has(Field::Connection);
    if (fresh && m_draft.State().track && m_draft.State().Artwork() == nullptr) m_reader->ReadArtwork();
}
}  // namespace ipodkit
