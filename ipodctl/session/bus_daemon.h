/// @file
/// Calls to others than the service: to the bus itself, and whoever is on it.
#pragma once

#include <gio/gio.h>

namespace ctl
{
/// The name that the service owns on the bus.
inline constexpr char kServiceName[] = "com.zarn.linux.ipod";

/// An object on the bus whose name is that of its interface, too.
struct Address
{
    const char* name;
    const char* path;
};

/// Calls a method, blocks for @p deadline milliseconds at most, and logs the call.
/// @return  the answer, owned by the caller; null when @p error is set
GVariant* CallAndLog(GDBusConnection* bus, const Address& callee, const char* method, GVariant* arguments, int deadline,
                     GError** error);

/// Calls a method of the bus and blocks for some seconds at most.
/// @return  its answer, owned by the caller; null when it refused
GVariant* AskBus(GDBusConnection* bus, const char* method, GVariant* arguments);
}  // namespace ctl
