/// @file
/// From the errors of the companion to the ends of a run.
#pragma once

#include <ipodkit/error.h>

#include "output/failure.h"

namespace ctl
{
/// @param refusal  what to say when the service refused; null: its own words
Failure ToFailure(const ipodkit::Error& error, const char* refusal = nullptr);
}  // namespace ctl
