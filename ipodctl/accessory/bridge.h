/// @file
/// Opening an accessory session with the companion app on the device, and bridging one with files or a socket.
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

/// Asks the device to start an app.
/// @throws Failure  kNothingDone, when the service does not
void LaunchApp(Session& session, const std::string& bundle);

/// The right to send on accessory sessions, which one ipodctl at a time has: all applications put their bytes into the
/// same buffer, and those of two senders overwrite each other.
class SenderLock
{
public:
    /// @throws Failure  kNoSegments, when another ipodctl has it
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
    double seconds = 5;  ///< to wait for the session
    bool launch = true;  ///< otherwise the device opens it by itself
};

/// Waits for a session that opens, after announcing and launching what is wanted.
/// @throws Failure      kServiceLost, when none opens in time
/// @throws Interrupted
ipodkit::AccessorySessionPtr OpenAccessory(Session& session, Loop& loop, ipodkit::AccessoryPort& port,
                                           const AccessoryRequest& request);

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

struct BridgeRequest
{
    AccessoryRequest accessory;
    std::string socket;  ///< its path; empty for standard input and output
    double linger = 1;   ///< seconds to wait for more after the end of the input
};

/// Opens a session and passes bytes both ways until it closes or the input has ended.
Answer RunBridge(Context& context, const BridgeRequest& request);
}  // namespace ctl
