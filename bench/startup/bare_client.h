/// @file
/// A session written with GDBus alone: it subscribes to the service's signals and reads the state with the requests
/// that ipodkit sends, without waiting in between.
#pragma once

#include <gio/gio.h>

#include <string>

namespace bench
{
class BareClient
{
public:
    BareClient() = default;
    ~BareClient();
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    void Open();
    bool Ready() const { return m_answers == m_expected; }
    int Events() const { return m_events; }

private:
    static void OnBus(GObject*, GAsyncResult* result, gpointer self);
    static void OnOwner(GObject* bus, GAsyncResult* result, gpointer self);
    static void OnAnswer(GObject* bus, GAsyncResult* result, gpointer self);
    static void OnSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* signal,
                         GVariant* body, gpointer self);
    void Ask(const std::string& owner);

    GDBusConnection* m_bus = nullptr;
    guint m_signals = 0;
    int m_expected = -1;
    int m_answers = 0;
    int m_events = 0;
};
}  // namespace bench
