/// @file
/// Fault injection: corrupted contents and crashes.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

#include "faults/faults.h"
#include "wire/segments.h"

namespace ipodsim
{
/// Returns the falsified body of a reply or signal; floating. Fault kinds that do not affect bodies return it
/// unchanged.
GVariant* Falsify(GVariant* body, const Fault& fault);

/// Falsifies the contents of a method's vector if the fault kind affects vectors.
void FalsifyVector(Segments& segments, const std::string& method, FaultKind kind);

/// Applies the armed faults to every signal that the service sends through @p connection.
void FalsifySignals(GDBusConnection* connection, const std::shared_ptr<Faults>& faults);

/// Kills the process at once; for CrashLocked, while holding the segment locks.
void CrashNow(Segments& segments, const Fault& fault);
}  // namespace ipodsim
