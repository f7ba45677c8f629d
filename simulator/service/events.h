/// @file
/// Events on request: what happens to the device or the unit without the application asking for it. Each changes the
/// state that can be asked for and emits the signal of the service.
#pragma once

#include <ipodsim.h>

#include <cstdint>
#include <string>
#include <vector>

#include "service/service.h"

namespace ipodsim::events
{
void PhoneCall(Service& service, const ipod::iPodPhoneCall& call);
/// The event again for each step. What the call lacks is filled in.
void CallSequence(Service& service, const ipod::iPodPhoneCall& call, const std::vector<CallStep>& steps);
void Battery(Service& service, const ipod::iPodBattery& battery);
void Carplay(Service& service, int status, const std::string& serialNumber);
void Carlife(Service& service, int status);
void WirelessCarPlay(Service& service, bool available, const std::string& deviceAddress);
void PairingInfo(Service& service, const std::string& btAddress, const Bytes& bytes);
void Location(Service& service, int status);
void ForegroundApp(Service& service, const std::string& bundleName);
void SourceValid(Service& service, bool valid);

/// A button of the device itself; false when it is none of play, pause, stop, next, previous.
bool PressButton(Service& service, const std::string& button);

/// The new device holds the built-in library. False when there is one of that name.
bool AttachDevice(Service& service, const std::string& name);
/// Playback stops when the device that is browsed goes. False when there is none of that name.
bool DetachDevice(Service& service, const std::string& name);
/// The same for the device whose music lies in a folder.
bool DetachFolder(Service& service, const std::string& folder);

/// The number of the new session, 0 when none is left.
std::uint16_t OpenEapSession(Service& service, int protocol);
/// Both false when the session is not open; sending also when the bytes do not fit into shared memory.
bool CloseEapSession(Service& service, std::uint16_t session);
bool SendEapData(Service& service, std::uint16_t session, const Bytes& data);

/// Arms a fault; a restart storm that names no method begins at once.
/// @throws std::runtime_error  the process may not be ended
void AddFault(Service& service, const Fault& fault);
/// Ends a restart storm too.
void ClearFaults(Service& service);
}  // namespace ipodsim::events
