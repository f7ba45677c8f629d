/// @file
/// Implementation of a session, shared with the other classes of the kit.
#pragma once

#include <ipodkit/session.h>

#include "bus/bus.h"
#include "commands/requests.h"
#include "loop/loop_operation.h"
#include "session/core_link.h"
#include "session/list_queues.h"
#include "session/memory.h"
#include "session/owner_watch.h"
#include "session/state_reader.h"
#include "sharing/leases.h"
#include "state/publisher.h"
#include "state/state_draft.h"

namespace ipodkit
{
/// Context thread only, unless noted.
class Session::Impl : public std::enable_shared_from_this<Session::Impl>
{
public:
    explicit Impl(const SessionOptions& options);

    void Start();
    void Close();

    /// @name Any thread
    /// @{
    ipodkit::Connection CurrentConnection() const;
    Subscription OnEvent(std::string name, EventCallback callback);
    void Refresh(Fields fields);
    ipodkit::Commands MakeCommands() const { return {m_bus, m_options.deadline}; }
    const std::shared_ptr<detail::Bus>& Bus() const { return m_bus; }
    const std::shared_ptr<Publisher>& States() const { return m_publisher; }
    GMainContext* Context() const { return m_context.get(); }
    const Guard& CallbackGuard() const { return m_guard; }
    const SessionOptions& Options() const { return m_options; }
    /// @}

    /// Reads the fields again, and completes the request when each has been read or cannot be read.
    void Refresh(Fields fields, const PendingPtr<StatePtr>& request);

    ListQueues& Queues() { return m_queues; }
    const std::shared_ptr<SerialQueue>& WriteQueue() const { return m_writeQueue; }
    const std::shared_ptr<Leases>& SharedLeases() const { return m_leases; }
    const StateDraft& Draft() const { return m_draft; }

    /// Callbacks for the end of the session, before its requests complete: for objects that may outlive it.
    Registry<std::function<void()>>& Endings() { return m_endings; }

    /// Starts a request that others wait for. It completes with ErrorKind::ServiceLost when its service ends, even if
    /// that service hangs and its process remains.
    template <class T, class Done>
    void StartWithService(Request<T> request, Done done) const
    {
        const auto lost = [](const Error& error)
        { return error.kind == ErrorKind::Cancelled ? detail::kServiceLost : error; };
        std::move(request)
            .CancelledBy(m_serviceEnd)
            .Start([done = std::move(done), lost](const Result<T>& result) { done(result.map_error(lost)); });
    }

    /// Returns the entries in the service's shared vector; nothing if it cannot be read.
    std::optional<std::vector<std::string>> ListNames(ListKind kind) const { return m_names(kind); }

private:
    friend class ipodkit::FakeSession;  // builds sessions without a bus

    struct PendingRefresh
    {
        Fields open;  // not read since the refresh began
        std::weak_ptr<Pending<StatePtr>> request;
    };

    template <class Method>
    auto Bound(Method method);
    void Connected(GDBusConnection* connection);
    void Disconnected(const Error& error);
    void NotStarted(const Error& error);
    void OwnerIs(const std::string& owner);
    void Appeared(const std::string& service);
    void Remember(const PlayerState& earlier);
    void Vanished();
    void Attach();
    void Attached(const std::optional<Error>& error);
    void Signalled(const char* signal, GVariant* body);
    void Follow(const Event& event);
    void Followed(const char* method);
    void Progressed();
    void ApplyProgress();
    void SettleRefreshes();
    void Published(Fields changed);
    void Step(Phase phase, std::optional<Error> error = std::nullopt, Fields missing = {});

    const SessionOptions m_options;
    const ContextPtr m_context;
    const Guard m_guard;
    const std::shared_ptr<detail::Bus> m_bus;
    ListQueues m_queues;
    const std::shared_ptr<SerialQueue> m_writeQueue = std::make_shared<SerialQueue>();
    const std::shared_ptr<Leases> m_leases;
    PictureCache m_pictures;
    StateDraft m_draft;
    const std::shared_ptr<Publisher> m_publisher;
    const std::shared_ptr<StateReader> m_reader;
    const std::shared_ptr<Memory> m_memory;
    Registry<EventCallback> m_eventCallbacks;
    std::shared_ptr<OwnerWatch> m_watch;
    std::function<std::optional<std::vector<std::string>>(ListKind)> m_names = NamesOf;
    Registry<std::function<void()>> m_endings;
    SourcePtr m_retry;
    Cancellation m_serviceEnd;
    std::vector<PendingRefresh> m_refreshes;
    Phase m_phase = Phase::Absent;
    std::uint32_t m_generation = 0;
    bool m_closed = false;
};
}  // namespace ipodkit
