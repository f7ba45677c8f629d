/// @file
/// From a signal on the bus to an event.
#pragma once

#include <ipodkit/event.h>

#include <optional>

#include "loop/glib_ptr.h"
#include "pictures/picture_shelf.h"

namespace ipodkit
{
/// Decodes a signal of the service. Images and accessory bytes are copied out of the segments, which hold them until
/// the service writes the next ones; without the segments they are empty.
///
/// Nothing for a signal that the contract does not have or whose body it does not allow.
std::optional<Event> Decode(const char* signal, GVariant* body, PictureShelf& pictures);
}  // namespace ipodkit
