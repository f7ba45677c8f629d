/// @file
/// Faults of signals: falsified on their way out.
#pragma once

#include <gio/gio.h>

#include <memory>

#include "faults/faults.h"

namespace ipodsim
{
/// Lets every signal of the service that leaves through @p connection meet the faults that are armed.
void FalsifySignals(GDBusConnection* connection, const std::shared_ptr<Faults>& faults);
}  // namespace ipodsim
