/// @file
/// The state of the simulated service: devices, database, playback, accessory sessions. The requests of the bus
/// (requests.h) and the actions work on it; what changes in playback goes out as signals.
#pragma once

#include <QBXIpodTypes.h>
#include <ipod_dbus.h>
#include <ipodsim_script.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "faults/faults.h"
#include "playback/clock.h"
#include "playback/player.h"
#include "service/agenda.h"
#include "service/call_log.h"
#include "service/device_list.h"
#include "service/eap_sessions.h"
#include "wire/segments.h"
#include "wire/signals.h"

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
        Log logRequest;                                      ///< empty: requests are not logged
        std::function<void(Segments&, const Fault&)> crash;  ///< ends the process; empty: it may not be ended
        std::function<void(unsigned)> restart;               ///< leaves the bus and returns so many times; 0 ends that
    };

    /// @throws std::runtime_error  shared memory cannot be used
    Service(ComZarnLinuxIpod* skeleton, GMainContext* context, const Settings& settings);

    Segments segments;
    Signals signals;
    DeviceList devices;
    Player player;
    EapSessions eap;
    UnitState unit;
    Agenda agenda;
    CallLog calls;
    std::map<std::string, Handler> handlers;  ///< of methods that a test answers
    std::shared_ptr<Faults> faults = std::make_shared<Faults>();

    /// The database that is browsed; null when no device is attached.
    Database* Browsed();

    /// Called with the title of a scenario after its last step.
    std::function<void(const std::string&)> scenarioEnded;

    void Warn(const std::string& line) const { m_settings.warn(line); }

    /// @param keep  whether it belongs into the log of calls
    void LogCall(const LoggedCall& call, bool keep);

    /// Dies, as a fault wants it. Does nothing but warn where it may not.
    void Crash(const Fault& fault);
    bool MayCrash() const { return static_cast<bool>(m_settings.crash); }
    void Restart(unsigned times) const { m_settings.restart(times); }

    /// What a time of the track's clock takes.
    double RealSeconds(double seconds) const { return seconds / m_settings.speed; }
    /// What passes on the track's clock in that time.
    double TrackSeconds(double seconds) const { return seconds * m_settings.speed; }
    /// Does work after so much time of the track's clock.
    void AfterSeconds(double seconds, std::function<void()> work);

    /// Takes a device away and reports it; playback stops when it is the one that is browsed. False when there is none
    /// of that name, or with music in that folder.
    bool DetachDevice(const std::string& name);
    bool DetachFolder(const std::string& folder);

    /// Opens an accessory session, reports it, and returns its number; 0 when all are in use.
    std::uint16_t OpenEapSession(int protocol);

    /// As after a start: nothing plays, no session is open. The devices stay.
    void Reset();

private:
    template <class Take>
    bool Detach(Take take);
    void OnTrack() override;
    void OnStatus() override;
    void OnProgress() override;
    void OnAmount() override;
    void OnShuffle() override;
    void OnRepeat() override;

    Settings m_settings;
    Clock m_clock;
};
}  // namespace ipodsim
