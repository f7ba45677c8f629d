/// @file
/// The driver's end of the bus: the bare proxies that the library is compared with, and the bench service's own
/// interface. Everything ends the program when the bus fails.
#pragma once

#include <IQBXIpodPlayer.h>
#include <ipod_dbus.h>

#include <string>
#include <vector>

namespace bench
{
GDBusConnection* Bus();

/// A proxy as the generated code makes it, without signals.
ComZarnLinuxIpod* BareProxy();

/// The player, initialised once.
IQBXIpodPlayer* Player();

/// Tells the service what to keep ready.
void Prepare(int names, int bytes, bool fillsEachTime);

/// The prepared page, and the prepared picture, over the bus.
std::vector<std::string> NamesOverTheBus();
std::vector<unsigned char> BytesOverTheBus();

/// Sends bytes over the bus.
void SendOverTheBus(const std::vector<unsigned char>& bytes);

/// Ends the program when @p error is set.
void Check(GError* error);
}  // namespace bench
