/// @file
/// Opening an accessory session with the companion app on the device.
#pragma once

#include <ipodkit/accessory.h>

#include "session/loop.h"
#include "session/session.h"

namespace ctl
{
/// Announces the unit's protocols.
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
}  // namespace ctl
