/// @file
/// Calls beside those of the service: to the bus daemon and to the simulator. Each is logged with its duration.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace ctl
{
class Session;

/// The name that the service owns on the bus.
inline constexpr char kServiceName[] = "com.zarn.linux.ipod";

struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

/// Calls a method of the bus daemon and blocks for ten seconds at most.
/// @param arguments  a floating tuple, or null for none
/// @return  its answer, a tuple; null when it refused
VariantPtr AskBus(GDBusConnection* bus, const char* method, GVariant* arguments);

/// Calls a method of the simulator's control interface and blocks for the session's deadline at most.
/// @param arguments  a floating tuple, or null for none
/// @return  its answer, a tuple
/// @throws Failure  kNoBus, kNoService, kUsage for arguments that are not valid, kNothingDone for a refusal,
/// kServiceLost
VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments);
}  // namespace ctl
