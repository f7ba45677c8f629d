/// @file
/// Which faults fit which members of the interface.
#pragma once

#include <string>

#include "faults/faults.h"

namespace ipodsim
{
/// Whether the interface com.zarn.linux.ipod has such a method or signal.
bool IsMember(const std::string& name);

/// @throws std::runtime_error  the interface has no such method; the message names the nearest one
void RequireMethod(const std::string& name);

/// Whether a fault can be seen on a member. Without a name, a fault that is no falsified content concerns methods only.
bool Fits(FaultKind kind, const std::string& member, bool byName);

/// The members that a kind fits, in one line for people.
std::string FittingMembers(FaultKind kind);
}  // namespace ipodsim
