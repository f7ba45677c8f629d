/// @file
/// The session bus, and the owner of the service's name on it.
#pragma once

#include <ipodkit/event.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "bus/bus.h"
#include "loop/glib_ptr.h"

namespace ipodkit
{
/// Connects to the bus, and again after the bus restarts; follows the owner of the service's name, and passes on the
/// signals of the present owner. Reports everything in the order in which the bus delivered it. Context thread only.
class OwnerWatch : public std::enable_shared_from_this<OwnerWatch>
{
public:
    struct Listener
    {
        std::function<void(GDBusConnection*)> connected;
        std::function<void(const Error&)> disconnected;              ///< also if there was no bus in the first place
        std::function<void(const std::string& owner)> ownerChanged;  ///< a unique name; empty for none
        std::function<void(const Error&)> notStarted;                ///< the bus could not start the service
        std::function<void(const char* signal, GVariant* body)> signalled;
    };

    OwnerWatch(GMainContext* context, bool activateService, Listener listener);

    void Start();

    /// Stops calling the listener.
    void Stop();

private:
    void GetBus();
    void GetAnotherBus();
    void Take(ConnectionPtr connection, const ErrorPtr& error);
    void Subscribe();
    void CallDaemon(const char* method, GVariant* arguments, const char* replyType, GAsyncReadyCallback callback);
    void StartService();
    void OwnerIs(const std::string& owner);
    void Closed();
    void Disconnect();
    void Later(void (OwnerWatch::*step)());

    static void OnBus(GObject*, GAsyncResult* result, gpointer data);
    static void OnAnotherBus(GObject*, GAsyncResult* result, gpointer data);
    static void OnStarted(GObject* connection, GAsyncResult* result, gpointer data);
    static void OnOwner(GObject* connection, GAsyncResult* result, gpointer data);
    static void OnOwnerChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                               GVariant* arguments, gpointer data);
    static void OnSignal(GDBusConnection*, const gchar* sender, const gchar*, const gchar*, const gchar* signal,
                         GVariant* body, gpointer data);
    static void OnClosed(GDBusConnection*, gboolean, GError*, gpointer data);

    const ContextPtr m_context;
    const bool m_activateService;
    Listener m_listener;
    ConnectionPtr m_connection;
    guint m_ownerSubscription = 0;
    guint m_signalSubscription = 0;
    gulong m_closedHandler = 0;
    SourcePtr m_later;
    std::string m_owner;  // unique name; empty for none
    bool m_stopped = false;
};
}  // namespace ipodkit
