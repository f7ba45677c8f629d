/// @file
/// Events on request: what happens to the device or the unit without the application asking for it. Each changes the
/// state that can be asked for and emits the signal of the service.
#pragma once

#include <ipod.pb.h>

#include <cstdint>
#include <string>

#include "service.h"

namespace ipodsim::events
{
void PhoneCall(Service& service, const ipod::iPodPhoneCall& call);
void Battery(Service& service, const ipod::iPodBattery& battery);
void Carplay(Service& service, int status, const std::string& serialNumber);
void Carlife(Service& service, int status);
void WirelessCarPlay(Service& service, bool available, const std::string& deviceAddress);
void PairingInfo(Service& service, const std::string& btAddress, const Bytes& bytes);
void Location(Service& service, int status);
void ForegroundApp(Service& service, const std::string& bundleName);
void SourceValid(Service& service, bool valid);

/// The new device holds the built-in library.
void AttachDevice(Service& service, const std::string& name);
/// Playback stops when the device that is browsed goes. False when there is none of that name.
bool DetachDevice(Service& service, const std::string& name);

/// The number of the new session, 0 when none is left.
std::uint16_t OpenEapSession(Service& service, int protocol);
/// Both false when the session is not open; sending also when the bytes do not fit into shared memory.
bool CloseEapSession(Service& service, std::uint16_t session);
bool SendEapData(Service& service, std::uint16_t session, const Bytes& data);
}  // namespace ipodsim::events
