/// @file
/// Decodes signals of the bus into events.
#pragma once

#include <ipodkit/event.h>

#include <optional>

#include "loop/glib_ptr.h"
#include "pictures/picture_cache.h"

namespace ipodkit
{
/// Decodes a signal of the service. Images and accessory bytes are copied out of the segments, which hold them until
/// the service writes the next ones; without the segments they are empty.
///
/// Returns nothing if the contract does not define the signal, or if its body has another type.
std::optional<Event> Decode(const char* signal, GVariant* body, PictureCache& pictures);
}  // namespace ipodkit
