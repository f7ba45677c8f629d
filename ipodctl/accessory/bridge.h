/// @file
/// Opens accessory sessions with the companion app on the device and bridges them to files or a socket.
#pragma once

#include <glib.h>
#include <ipodkit/accessory.h>

#include <functional>
#include <string>

#include "session/loop.h"
#include "session/session.h"

namespace ctl
{
/// Announces the accessory protocols of the head unit.
void Announce(Session& session, const ipodkit::AccessoryInfo& info);

/// Launches an app on the device.
/// @throws Failure  kNothingDone, if the service rejects the request
void LaunchApp(Session& session, const std::string& bundle);

/// The exclusive right to send on accessory sessions. One ipodctl at a time holds it: all applications write to the
/// same buffer, and two senders would overwrite each other's bytes.
class SenderLock
{
public:
    /// @throws Failure  kNoSegments, if another ipodctl holds the lock
    explicit SenderLock(Session& session);
    ~SenderLock();
    SenderLock(const SenderLock&) = delete;
    SenderLock& operator=(const SenderLock&) = delete;

private:
    int m_file;
};

struct AccessoryRequest
{
    ipodkit::AccessoryInfo info{"com.example.echo", "com.example.echo"};
    double seconds = 5;  ///< timeout for the session to open
    bool launch = true;  ///< false: the device opens the session by itself
};

/// Announces the protocols and launches the app if requested, then waits for a session to open.
/// @throws Failure      kServiceLost, if no session opens in time
/// @throws Interrupted  on Ctrl-C
ipodkit::AccessorySessionPtr OpenAccessory(Session& session, Loop& loop, ipodkit::AccessoryPort& port,
                                           const AccessoryRequest& request);

class SocketServer
{
public:
    /// Creates the socket with access for this user only. Replaces a stale socket that nobody listens on.
    ///
    /// @param connected  receives each client and owns its descriptor; the next client waits until AcceptNext()
    /// @throws Failure   kUsage, if the socket cannot be created
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

struct BridgeRequest
{
    AccessoryRequest accessory;
    std::string socket;  ///< path; empty for standard input and output
    double linger = 1;   ///< seconds of silence to wait for after the end of the input
};

/// Opens a session and forwards bytes both ways until the session closes or the input ends.
Answer RunBridge(Context& context, const BridgeRequest& request);
}  // namespace ctl
