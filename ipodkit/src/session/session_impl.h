/// @file
/// The inside of a session, shared with the other parts of the companion.
#pragma once

#include <ipodkit/session.h>

#include <mutex>

#include "bus/bus.h"
#include "commands/records.h"
#include "session/core_link.h"
#include "session/event_queue.h"
#include "session/lanes.h"
#include "state/publisher.h"
#include "state/state_draft.h"

namespace ipodkit
{
/// Context thread only, where it says nothing else.
class Session::Impl : public std::enable_shared_from_this<Session::Impl>
{
public:
    explicit Impl(const SessionOptions& options);

    void Start();
    void Close();

    /// @name Any thread
    /// @{
    ipodkit::Connection CurrentConnection() const;
    Subscription OnConnection(std::string name, ConnectionCallback callback);
    Subscription Listen(std::string name, IQBXIpodPlayerListener& listener);
    ipodkit::Commands MakeCommands() const { return {m_bus, m_options.deadline}; }
    const std::shared_ptr<detail::Bus>& Bus() const { return m_bus; }
    const std::shared_ptr<Publisher>& States() const { return m_publisher; }
    GMainContext* Context() const { return m_context.get(); }
    const Guard& CallbackGuard() const { return m_guard; }
    const SessionOptions& Options() const { return m_options; }
    /// @}

    /// Delivers the events that have arrived: those that came before an answer are to be heard before it.
    void Replay();

    Lanes& ListLanes() { return m_lanes; }
    const std::shared_ptr<Lane>& WriteLane() const { return m_writeLane; }
    const StateDraft& Draft() const { return m_draft; }

    /// Called when the session ends, before its requests complete: for what may outlive it.
    Registry<std::function<void()>>& Endings() { return m_endings; }

private:
    struct ConnectionTarget
    {
        ConnectionCallback callback;
        bool greeted;
    };

    /// Hears of devices that come and go.
    class DeviceWatch : public IQBXIpodPlayerListener
    {
    public:
        explicit DeviceWatch(Impl& session) : m_session(session) {}
        void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus, int) override { m_session.DevicesChanged(); }

    private:
        Impl& m_session;
    };

    // The bus, and who owns the service's name on it.
    void GetBus();
    void HaveBus(GDBusConnection* connection);
    void WatchOwner();
    void OwnerIs(const std::string& owner);
    void Appeared();
    void Vanished();
    void BusClosed();

    // From an owner to a state.
    void Ping();
    void Answered();
    void Probe();
    void Probed(const std::optional<Error>& error);
    void Attached();
    void ReadAll();
    void ReadEnded();
    void DevicesChanged();
    void ReadDevices();
    void FetchArtwork();
    void ArtworkArrived(const Result<PictureHead>& head);
    void TakeArtwork(const PictureHead& head);

    void Followed(const char* method);
    void Published(Fields changed);
    void SetConnection(Phase phase, std::optional<Error> error = std::nullopt);
    void RetryLater(void (Impl::*step)());
    bool Present(std::uint32_t generation) const { return !m_owner.empty() && generation == m_generation; }

    template <class T, class Apply>
    void Read(Request<T> request, Apply apply);

    static void OnBus(GObject*, GAsyncResult* result, gpointer data);
    static void OnNameOwner(GObject* connection, GAsyncResult* result, gpointer data);
    static void OnOwnerChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                               GVariant* arguments, gpointer data);
    static void OnClosed(GDBusConnection*, gboolean, GError*, gpointer data);

    const SessionOptions m_options;
    const ContextPtr m_context;
    const Guard m_guard;
    const std::shared_ptr<detail::Bus> m_bus;
    EventQueue m_queue;
    Lanes m_lanes;
    const std::shared_ptr<Lane> m_writeLane = std::make_shared<Lane>();
    PictureShelf m_pictures;
    StateDraft m_draft;
    std::shared_ptr<Publisher> m_publisher;
    Registry<ConnectionTarget> m_connectionTargets;
    Registry<IQBXIpodPlayerListener*> m_listeners;
    Registry<std::function<void()>> m_endings;

    ConnectionPtr m_connection;
    guint m_ownerSubscription = 0;
    gulong m_closedHandler = 0;
    SourcePtr m_retry;
    std::string m_owner;  // unique name; empty while there is none
    std::uint32_t m_generation = 0;
    DeviceWatch m_deviceWatch{*this};
    int m_reading = 0;
    bool m_devicesChanged = false;  // while the answers were under way
    bool m_listening = false;
    bool m_fetchingArtwork = false;
    bool m_artworkOutdated = false;

    mutable std::mutex m_mutex;  // guards the published connection
    ipodkit::Connection m_published;
};
}  // namespace ipodkit
