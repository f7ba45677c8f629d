/// @file
/// Which fault kinds apply to which members of the interface.
#pragma once

#include <string>
#include <vector>

#include "faults/faults.h"

namespace ipodsim
{
/// The methods and signals of the interface com.zarn.linux.ipod.
std::vector<std::string> Members();

/// @throws std::runtime_error  the interface has no such method; the message suggests the nearest name
void RequireMethod(const std::string& name);

/// Whether a fault kind has an effect on a member. Faults that do not falsify contents apply to signals only if @p
/// byName.
bool Fits(FaultKind kind, const std::string& member, bool byName);

/// The members that a kind fits, as one readable line.
std::string FittingMembers(FaultKind kind);
}  // namespace ipodsim
