/// @file
/// The driver's end of the bus: bare proxies as the baseline for the library, and the interface of the bench service.
/// All functions end the program if the bus fails.
#pragma once

#include <IQBXIpodPlayer.h>
#include <ipod_dbus.h>

#include <string>
#include <vector>

namespace bench
{
GDBusConnection* Bus();

/// A proxy created by the generated code, without signals.
ComZarnLinuxIpod* BareProxy();

/// The player, initialized once.
IQBXIpodPlayer* Player();

/// Sets the data that the service prepares.
void Prepare(int names, int bytes, bool fillsEachTime);

/// Fetch the prepared page and the prepared image over the bus.
std::vector<std::string> NamesOverTheBus();
std::vector<unsigned char> BytesOverTheBus();

/// Sends bytes over the bus.
void SendOverTheBus(const std::vector<unsigned char>& bytes);

/// Ends the program if @p error is set.
void Check(GError* error);
}  // namespace bench
