/// @file
/// The types of images under the companion's names.
#pragma once

#include <images/image.h>
#include <ipodkit/picture.h>

namespace ipodkit
{
static_assert(static_cast<int>(PictureType::Tiff) == static_cast<int>(images::Type::Tiff), "both have one order");

constexpr PictureType ToPictureType(images::Type type)
{
    return static_cast<PictureType>(type);
}

constexpr images::Type ToImageType(PictureType type)
{
    return static_cast<images::Type>(type);
}
}  // namespace ipodkit
