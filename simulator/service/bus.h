/// @file
/// A private connection of one service to the session bus.
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
    /// Opens a private connection. Events arrive in the thread-default main context.
    /// @throws std::runtime_error  there is no session bus
    Bus();
    /// Closes the connection, which releases the names.
    ~Bus();
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    GDBusConnection* Connection() const { return m_connection.get(); }

    /// @throws std::runtime_error  the object cannot be exported
    void Export(GDBusInterfaceSkeleton* skeleton, const char* path) const;
    /// @throws std::runtime_error  the name already has an owner; the message identifies the process
    void Own(const char* name) const;
    /// Blocks until everything sent has left the process.
    void Flush() const;
    /// Sets the function to call when the bus disconnects.
    void OnLost(std::function<void()> lost);

private:
    std::string OwnerOf(const char* name) const;
    static void Closed(GDBusConnection*, gboolean, GError*, gpointer self);

    ObjectPtr<GDBusConnection> m_connection;
    std::function<void()> m_lost;
};
}  // namespace ipodsim
