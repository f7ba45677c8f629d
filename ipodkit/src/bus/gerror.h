/// @file
/// From GLib's errors to the companion's.
#pragma once

#include <ipodkit/error.h>

#include "loop/glib_ptr.h"

namespace ipodkit
{
/// The reason is the bus's own message; the error's name stands beside it, not in front.
Error ToError(const GError& error);
}  // namespace ipodkit
