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
    std::string musicFolder;  ///< empty: the built-in library
    std::string deviceName = "Desk iPod";
    double speed = 1;   ///< of the clock; above 0
    unsigned seed = 1;  ///< of shuffled orders; the same seed gives the same orders

    /// Receives a line about each file or picture that is left out. Empty: written to standard error.
    std::function<void(const std::string&)> warn;
    /// Receives a line for each request. Empty: requests are not logged. Called on the service's thread.
    std::function<void(const std::string&)> logRequest;
    /// Called on the service's thread when the bus goes away; nothing reaches the service from then on.
    std::function<void()> busLost;
};

class Simulator
{
public:
    /// Returns when the service can be called.
    ///
    /// @throws std::runtime_error  no session bus; one of its names has an owner already; the music folder or shared
    ///         memory cannot be used. The message is one line for people.
    explicit Simulator(Options options = {});
    /// Gives the names back. The segments stay.
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// For example "24 songs, 9 artists, 9 albums".
    std::string Summary() const;

    /// @name Events
    /// Each makes the service emit the signal of the like name. A status is a number of the enumerations of
    /// QBXIpodTypes.h. @{
    void PhoneCall(const ipod::iPodPhoneCall& call);
    void Battery(const ipod::iPodBattery& battery);
    void Carplay(int status, const std::string& serialNumber);
    void Carlife(int status);
    void WirelessCarPlay(bool available, const std::string& deviceAddress);
    void PairingInfo(const std::string& btAddress, const std::vector<unsigned char>& bytes);
    void Location(int status);
    void ForegroundApp(const std::string& bundleName);
    void SourceValid(bool valid);
    /// The new device holds the built-in library.
    void AttachDevice(const std::string& name);
    /// False when there is none of that name.
    bool DetachDevice(const std::string& name);
    /// The number of the new session; 0 when none is left.
    std::uint16_t OpenEapSession(int protocol);
    /// False when the session is not open.
    bool CloseEapSession(std::uint16_t session);
    /// False when the session is not open or the bytes do not fit into shared memory.
    bool SendEapData(std::uint16_t session, const std::vector<unsigned char>& bytes);
    /// @}

private:
    class Host;
    std::unique_ptr<Host> m_host;
};
}  // namespace ipodsim
