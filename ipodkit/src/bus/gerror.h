/// @file
/// Converts GLib's errors to those of the kit.
#pragma once

#include <ipodkit/error.h>

#include <optional>

#include "loop/glib_ptr.h"

namespace ipodkit
{
/// Converts an error. The reason is the bus's own message, without the name of the error.
Error ToError(const GError& error);

/// Returns the error that a reply contains; nothing if it is another message. Errors that the bus sends on behalf of a
/// dead or missing service have separate kinds; an error that the service itself sends is ErrorKind::Refused, whatever
/// its name.
std::optional<Error> ErrorIn(GDBusMessage& reply);
}  // namespace ipodkit
