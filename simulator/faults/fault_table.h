/// @file
/// Which faults fit which members of the interface.
#pragma once

#include <string>
#include <vector>

#include "faults/faults.h"

namespace ipodsim
{
/// The methods and signals of the interface com.zarn.linux.ipod.
std::vector<std::string> Members();

/// @throws std::runtime_error  the interface has no such method; the message names one that is similar
void RequireMethod(const std::string& name);

/// Whether a fault can be seen on a member. Without a name, a fault that is no falsified content concerns methods only.
bool Fits(FaultKind kind, const std::string& member, bool byName);

/// The members that a kind fits, in one line for people.
std::string FittingMembers(FaultKind kind);
}  // namespace ipodsim
