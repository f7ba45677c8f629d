/// @file
/// The state of the simulated service: devices, database, playback, accessory sessions. The requests of the bus
/// (requests.h) and the events on request (events.h) work on it; what changes in playback goes out as signals.
#pragma once

#include <QBXIpodTypes.h>
#include <ipod_dbus.h>

#include <functional>
#include <string>

#include "clock.h"
#include "device_list.h"
#include "eap_sessions.h"
#include "player.h"
#include "segments.h"
#include "signals.h"

namespace ipodsim
{
/// What the unit or its user told the service, and what can be asked back.
struct UnitState
{
    int carplay = APPLE_DEVICE_NOT_DETECTED;
    std::string carplaySerial;
    int carlife = APPLE_DEVICE_NOT_DETECTED;
    std::string foregroundApp;
};

/// Receives one line.
using Log = std::function<void(const std::string&)>;

/// Lives on the service's thread.
class Service : private PlayerObserver
{
public:
    struct Settings
    {
        double speed = 1;
        unsigned seed = 0;
        Log warn;
        Log logRequest;  ///< empty: requests are not logged
    };

    /// @throws std::runtime_error  shared memory cannot be used
    Service(ComZarnLinuxIpod* skeleton, GMainContext* context, const Settings& settings);

    Segments segments;
    Signals signals;
    DeviceList devices;
    Player player;
    EapSessions eap;
    UnitState unit;

    /// The database that is browsed; null when no device is attached.
    Database* Browsed();

    void LogRequest(GDBusMethodInvocation* invocation) const;

private:
    void OnTrack() override;
    void OnStatus() override;
    void OnProgress() override;
    void OnAmount() override;
    void OnShuffle() override;
    void OnRepeat() override;

    Clock m_clock;
    Log m_logRequest;
};
}  // namespace ipodsim
