/// @file
/// The state of the simulated service: devices, database, playback, accessory sessions. Bus requests (requests.h) and
/// actions operate on it; playback changes are emitted as signals.
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
/// State that the head unit or an action has set, and that getters return.
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
        Log logRequest;                                      ///< empty to log no requests
        std::function<void(Segments&, const Fault&)> crash;  ///< kills the process; empty if that is not allowed
        std::function<void(unsigned)> restart;               ///< leaves the bus and returns that many times; 0 stops it
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
    std::map<std::string, Handler> handlers;  ///< handlers set by a test, by method
    std::shared_ptr<Faults> faults = std::make_shared<Faults>();

    /// The browsed database; null if no device is attached.
    Database* Browsed();

    /// Called with the title of a scenario after its last step.
    std::function<void(const std::string&)> scenarioEnded;

    void Warn(const std::string& line) const { m_settings.warn(line); }

    /// @param keep  whether to add it to the call log
    void LogCall(const LoggedCall& call, bool keep);

    /// Crashes as the fault requires. Requires MayCrash().
    void Crash(const Fault& fault) { m_settings.crash(segments, fault); }
    bool MayCrash() const { return static_cast<bool>(m_settings.crash); }
    void Restart(unsigned times) const { m_settings.restart(times); }

    /// Converts time on the track's clock to real time.
    double RealSeconds(double seconds) const { return seconds / m_settings.speed; }
    /// Converts real time to time on the track's clock.
    double TrackSeconds(double seconds) const { return seconds * m_settings.speed; }
    /// Runs @p work after a time on the track's clock.
    void AfterSeconds(double seconds, std::function<void()> work);

    /// Detaches a device and reports it; playback stops if it is the browsed one. False if no device has that name or
    /// folder.
    bool DetachDevice(const std::string& name);
    bool DetachFolder(const std::string& folder);

    /// Opens an accessory session, reports it, and returns its number; 0 if all are in use.
    std::uint16_t OpenEapSession(int protocol);

    /// Restores the state after a start: nothing plays, no session is open. Keeps the devices.
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
