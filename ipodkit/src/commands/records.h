/// @file
/// Byte records inside variants, and other shapes of replies and arguments.
#pragma once

#include <ipodkit/commands.h>

#include <array>
#include <string>

#include "loop/glib_ptr.h"

namespace ipodkit
{
using PictureHead = std::array<std::uint32_t, 4>;

/// Bodies "(v)" that hold a byte array. ErrorKind::BadReply when the array has another size than the record.
Result<Track> ToTrack(GVariant* body);
Result<PictureHead> ToPictureHead(GVariant* body);

/// The same from the variant of an event, as the core reads it: what is too short is filled with zeros, what is too
/// long is cut.
Track TrackIn(GVariant* boxed);
PictureHead PictureHeadIn(GVariant* boxed);

/// Why a text cannot be sent; nothing when it can.
std::optional<Error> Obstacle(const std::string& text, std::size_t longest);

/// The argument of EapInit, "v", floating. The texts must be sendable.
GVariant* ToEapInit(const AccessoryInfo& info);
}  // namespace ipodkit
