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

/// Decode bodies "(v)" that hold a byte array. ErrorKind::BadReply if the array differs in size from the record.
Result<Track> ToTrack(GVariant* body);
Result<PictureHead> ToPictureHead(GVariant* body);

/// Decode the variant of an event like the core does: short records are padded with zeros, long ones truncated.
Track TrackIn(GVariant* boxed);
PictureHead PictureHeadIn(GVariant* boxed);

/// Returns why a text cannot be sent; nothing if it can.
std::optional<Error> CheckText(const std::string& text, std::size_t longest);

/// Returns the argument of EapInit, a floating "v". The texts must be valid.
GVariant* ToEapInit(const AccessoryInfo& info);
}  // namespace ipodkit
