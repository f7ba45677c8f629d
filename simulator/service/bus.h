/// @file
/// A connection to the session bus that belongs to one service.
#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <string>

namespace ipodsim
{
struct Unref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <class Object>
using ObjectPtr = std::unique_ptr<Object, Unref>;

class Bus
{
public:
    /// Connects, not shared with anybody in this process. Events come on the thread-default main context.
    /// @throws std::runtime_error  there is no session bus
    Bus();
    /// Closes the connection, which gives the names back.
    ~Bus();
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    GDBusConnection* Connection() const { return m_connection.get(); }

    /// @throws std::runtime_error  it cannot be exported
    void Export(GDBusInterfaceSkeleton* skeleton, const char* path) const;
    /// @throws std::runtime_error  somebody else owns it; the message says which process
    void Own(const char* name) const;
    /// Returns when everything that was sent has left.
    void Flush() const;
    /// @p lost is called when the bus goes away.
    void OnLost(std::function<void()> lost);

private:
    std::string OwnerOf(const char* name) const;
    static void Closed(GDBusConnection*, gboolean, GError*, gpointer self);

    ObjectPtr<GDBusConnection> m_connection;
    std::function<void()> m_lost;
};
}  // namespace ipodsim
