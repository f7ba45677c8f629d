#include "support/private_bus.h"

#include <vector>

namespace test
{
namespace
{
// Never released: g_test_dbus_down() waits 30 seconds for connections held by proxies, and the client's proxy exists
// until the process ends.
auto& daemons = *new std::vector<GTestDBus*>;

// By default, the process ends when the bus does.
void SurviveTheBus()
{
    GDBusConnection* const session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (session == nullptr) return;
    g_dbus_connection_set_exit_on_close(session, FALSE);
    g_object_unref(session);
}
}  // namespace

PrivateBus::PrivateBus()
{
    m_daemon = g_test_dbus_new(G_TEST_DBUS_NONE);
    daemons.push_back(m_daemon);
    g_test_dbus_up(m_daemon);
}

PrivateBus::~PrivateBus()
{
    Stop();
}

void PrivateBus::Stop()
{
    if (!m_running) return;
    SurviveTheBus();
    g_test_dbus_stop(m_daemon);
    m_running = false;
}

NoBus::NoBus()
{
    g_setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/session-bus", TRUE);
}
}  // namespace test
