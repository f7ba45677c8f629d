/// @file
/// A UNIX socket that serves one client after the other.
#pragma once

#include <glib.h>

#include <functional>
#include <string>

namespace ctl
{
class SocketServer
{
public:
    /// Makes the socket, for this user only. Replaces one that nobody listens on any more.
    ///
    /// @param connected  called with each client, who becomes the callee's; the next one waits until AcceptNext()
    /// @throws Failure   kUsage, when it cannot be made
    SocketServer(const std::string& path, std::function<void(int client)> connected);

    /// Removes the socket.
    ~SocketServer();
    SocketServer(const SocketServer&) = delete;
    SocketServer& operator=(const SocketServer&) = delete;

    void AcceptNext();

private:
    static gboolean OnClient(gint file, GIOCondition, gpointer data);

    const std::string m_path;
    const std::function<void(int client)> m_connected;
    int m_file = -1;
    guint m_watch = 0;
};
}  // namespace ctl
