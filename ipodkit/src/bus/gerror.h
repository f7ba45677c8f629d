/// @file
/// Converts GLib's errors to those of the kit.
#pragma once

#include <ipodkit/error.h>

#include <optional>

#include "loop/glib_ptr.h"

namespace ipodkit
{
/// The reason is the bus's own message, without the name of the error.
Error ToError(const GError& error);

/// The error that a reply is; nothing when it is another message. What the bus sends on behalf of a service that died
/// or is not there has a separate kind; an error that the service itself sends is ErrorKind::Refused, whatever its
/// name.
std::optional<Error> ErrorIn(GDBusMessage& reply);
}  // namespace ipodkit
