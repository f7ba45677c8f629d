/// @file
/// Contents as a faulty service would send them, and its end.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

#include "faults/faults.h"
#include "wire/segments.h"

namespace ipodsim
{
/// The falsified form of what a reply or a signal carries; floating. A kind that changes nothing of it gives the same.
GVariant* Falsify(GVariant* body, const Fault& fault);

/// Falsifies what a method has put into its vector, if the kind is one of those.
void FalsifyVector(Segments& segments, const std::string& method, FaultKind kind);

/// Lets every signal of the service that leaves through @p connection meet the faults that are armed.
void FalsifySignals(GDBusConnection* connection, const std::shared_ptr<Faults>& faults);

/// Kills the process at once; for CrashLocked with the locks of the segments held.
void CrashNow(Segments& segments, const Fault& fault);
}  // namespace ipodsim
