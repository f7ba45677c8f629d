/// @file
/// Calls the bus daemon and the simulator. Logs each call with its duration.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace ctl
{
class Session;

/// Well-known bus name of the service.
inline constexpr char kServiceName[] = "com.zarn.linux.ipod";

struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

/// Calls a method of the bus daemon. Blocks for at most ten seconds.
/// @param arguments  a floating tuple, consumed by the call; null for none
/// @return  the reply tuple; null if the call failed
VariantPtr AskBus(GDBusConnection* bus, const char* method, GVariant* arguments);

/// Calls a method of the simulator's control interface. Blocks for at most the session's deadline.
/// @param arguments  a floating tuple, consumed by the call; null for none
/// @return  the reply tuple
/// @throws Failure  kNoBus, kNoService, kUsage for invalid arguments, kNothingDone for any other error reply,
/// kServiceLost without a reply
VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments);
}  // namespace ctl
