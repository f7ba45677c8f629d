/// @file
/// A service for your own test: the simulated iPod service on the bus of DBUS_SESSION_BUS_ADDRESS, for as long as
/// the object lives.
///
///     ipodsim::Simulator service;                     // the built-in library
///     IQBXIpodPlayer* player = QBX_GetIpodPlayer();
///     player->InitInstance();
///     ipod::iPodPhoneCall call;
///     call.set_status(ipod::PHONE_CALL_STATUS_RINGING);
///     service.PhoneCall(call);                        // the player's listeners learn of it
///
/// The service runs on a thread and a connection of its own, so that the player's blocking commands may be called
/// from the same process. It attaches the two shared-memory segments, whose names are global to a machine: at most
/// one service should run in one mount namespace.
///
/// All members may be called from any thread; each blocks until the service has done what was asked and emitted its
/// signal. Nothing throws but where it is stated.
#pragma once

#include <ipod.pb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ipodsim
{
/// Bus name that the service owns.
constexpr char kServiceName[] = "com.zarn.linux.ipod";

struct Options
{
    /// Its sub-folders are devices; empty: one device with the built-in library.
    std::string musicFolder;
    /// Of the device with the built-in library, or the folder's own files: UTF-8.
    std::string deviceName = "Desk iPod";
    bool oneDevice = false;    ///< everything below the music folder belongs to that device
    std::string cacheFolder;   ///< where what is read of files is kept; empty: nowhere
    bool waitForIndex = true;  ///< the constructor returns when all music has been read once

    double speed = 1;       ///< factor of the clock, between 0.001 and 10000
    unsigned seed = 1;      ///< of shuffled orders; the same seed gives the same orders
    bool mayCrash = false;  ///< the faults "crash" and "crash-locked" end this process; otherwise they are refused

    /// Receives a line about each of the first ten files or pictures that a reading leaves out, and one with the number
    /// of the others. Empty: written to standard error. Called on the service's threads.
    std::function<void(const std::string&)> warn;
    /// Receives a line for each request and its answer. Empty: requests are not logged. Called on the service's thread.
    std::function<void(const std::string&)> logRequest;
    /// Receives how many files of how many have been read, now and then. Called on the service's threads.
    std::function<void(std::size_t done, std::size_t all)> progress;
    /// Receives the title of a scenario after its last step. Called on the service's thread.
    std::function<void(const std::string&)> scenarioEnded;
    /// Called on the service's thread when the bus disconnects, or when another process has taken one of the names
    /// during a restart storm; nothing reaches the service from then on.
    std::function<void()> busLost;
};

/// What the service was asked, and what it answered. Values are in GLib's text form, for example "(true, 3)".
struct Call
{
    std::int64_t time = 0;  ///< when it came, microseconds since 1970-01-01 UTC
    std::string sender;     ///< unique bus name of the caller
    std::string method;     ///< for example "GetPlayStatus"
    std::string arguments;  ///< a tuple
    std::string error;      ///< name of the error that was answered; empty when none was
    std::string answer;     ///< a tuple; with an error its message; empty when nothing was answered
};

/// A state of a call and how long it lasts.
struct CallStep
{
    ipod::PhoneCallStatus status = ipod::PHONE_CALL_STATUS_DISCONNECTED;
    double seconds = 0;  ///< until the next step, on the service's clock
};

class Simulator
{
public:
    /// Returns when the service can be called.
    ///
    /// @throws std::runtime_error  no session bus; one of its names has an owner already; an option, the music folder
    ///         or shared memory cannot be used. The message is one line for people.
    explicit Simulator(Options options = {});
    /// Gives the names back. The segments stay.
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// For example "24 songs, 9 artists, 9 albums": what all devices hold now.
    std::string Summary() const;
    /// Whether all music has been read once.
    bool Indexed() const;

    /// @name Events
    /// Each makes the service emit the signal of the like name. A status is a number of the enumerations of
    /// QBXIpodTypes.h.
    /// @throws std::runtime_error  a text is not UTF-8, but for those in messages
    /// @{
    void PhoneCall(const ipod::iPodPhoneCall& call);
    /// The event again for each step; returns after the first. An identifier, the start and the reason of the end are
    /// filled in where the call has none.
    void CallSequence(const ipod::iPodPhoneCall& call, const std::vector<CallStep>& steps);
    void Battery(const ipod::iPodBattery& battery);
    void Carplay(int status, const std::string& serialNumber);
    void Carlife(int status);
    void WirelessCarPlay(bool available, const std::string& deviceAddress);
    void PairingInfo(const std::string& btAddress, const std::vector<unsigned char>& bytes);
    void Location(int status);
    void ForegroundApp(const std::string& bundleName);
    void SourceValid(bool valid);
    /// A button of the device itself: play, pause, stop, next, previous; false when it is none of them.
    bool PressButton(const std::string& button);
    /// The new device holds the built-in library. False when there is one of that name.
    bool AttachDevice(const std::string& name);
    /// False when there is none of that name.
    bool DetachDevice(const std::string& name);
    /// The number of the new session; 0 when none is left.
    std::uint16_t OpenEapSession(int protocol);
    /// False when the session is not open.
    bool CloseEapSession(std::uint16_t session);
    /// False when the session is not open or the bytes do not fit into shared memory.
    bool SendEapData(std::uint16_t session, const std::vector<unsigned char>& bytes);
    /// @}

    /// @name What it was asked
    /// @{

    /// The last ten thousand calls of a method, or of all, the oldest first; fewer if they hold more than 32 MiB.
    /// @throws std::runtime_error  the interface has no such method; the message names the nearest one
    std::vector<Call> Calls(const std::string& method = {}) const;
    void ClearCalls();
    /// @}

    /// @name What goes wrong
    /// @{

    /// Arms a fault, as `KIND[=PARAMETER][@MEMBER][/COUNT]`, for example "delay=500@GetPlayStatus/3".
    /// docs/simulator.md lists the kinds.
    /// @throws std::runtime_error  there is no such fault; the message says what was expected
    void Fault(const std::string& fault);
    /// Disarms all faults and ends a restart storm.
    void ClearFaults();
    /// @}

    /// Lets the steps of a scenario happen, beginning now.
    /// @throws std::runtime_error  it is malformed; the message says where, and what was expected
    void RunScenario(const std::string& json);

private:
    class Host;
    std::unique_ptr<Host> m_host;
};
}  // namespace ipodsim
