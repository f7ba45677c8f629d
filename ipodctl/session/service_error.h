/// @file
/// From the errors of the companion to the ends of a run.
#pragma once

#include <ipodkit/error.h>

#include "output/failure.h"

namespace ctl
{
/// @param refusal  what to say when the service answered "false"; null: its own words. An error has a name and words of
///                 its own, and may mean anything.
Failure ToFailure(const ipodkit::Error& error, const char* refusal = nullptr);
}  // namespace ctl
