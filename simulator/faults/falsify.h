/// @file
/// Contents as a faulty service would send them.
#pragma once

#include <glib.h>

#include <string>

#include "faults/faults.h"
#include "wire/segments.h"

namespace ipodsim
{
/// The falsified form of what a reply or a signal carries; floating. A kind that changes nothing of it gives the same.
GVariant* Falsify(GVariant* body, const Fault& fault);

/// Falsifies what a method has put into its vector, if the kind is one of those.
void FalsifyVector(Segments& segments, const std::string& method, FaultKind kind);
}  // namespace ipodsim
