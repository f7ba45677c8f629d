/// @file
/// Questions to the bus itself.
#pragma once

#include <gio/gio.h>

namespace ctl
{
/// The name that the service owns on the bus.
inline constexpr char kServiceName[] = "com.zarn.linux.ipod";

/// Calls a method of the bus and blocks for some seconds at most.
/// @return  its answer, owned by the caller; null when it refused
GVariant* AskBus(GDBusConnection* bus, const char* method, GVariant* arguments);
}  // namespace ctl
