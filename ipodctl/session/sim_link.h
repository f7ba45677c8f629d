/// @file
/// The control interface of the simulator, com.zarn.linux.ipod.Simulator.
#pragma once

#include <gio/gio.h>

#include <memory>

#include "session/session.h"

namespace ctl
{
struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

/// Calls a method of the simulator and returns its answer, a tuple.
/// @param arguments  a floating tuple, or null for none
/// @throws Failure  kNoBus, kNoService, kUsage for arguments that are not valid, kNothingDone for a refusal,
/// kServiceLost
VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments);
}  // namespace ctl
