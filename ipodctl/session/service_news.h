/// @file
/// What happens to the service while it is followed.
#pragma once

#include <string>

#include "output/output.h"

namespace ctl
{
constexpr char kServiceIsThere[] = "the iPod service is there; following its events";
constexpr char kServiceLeft[] = "the iPod service left the bus; waiting for it to come back";

/// For people on standard error; for programs a line of the same kind as the events.
///
/// @param line  whether programs read lines of JSON
void TellOfService(Output& out, bool line, const char* state, const std::string& what);
}  // namespace ctl
