/// @file
/// Types of images, in the names of the kit.
#pragma once

#include <images/image.h>
#include <ipodkit/picture.h>

namespace ipodkit
{
// The header of images::Type is not installed, so the kit's header repeats its list.
constexpr PictureType ToPictureType(images::Type type)
{
    return static_cast<PictureType>(type);
}

constexpr images::Type ToImageType(PictureType type)
{
    return static_cast<images::Type>(type);
}

static_assert(ToPictureType(images::Type::Unknown) == PictureType::Unknown);
static_assert(ToPictureType(images::Type::Jpeg) == PictureType::Jpeg);
static_assert(ToPictureType(images::Type::Png) == PictureType::Png);
static_assert(ToPictureType(images::Type::Gif) == PictureType::Gif);
static_assert(ToPictureType(images::Type::Bmp) == PictureType::Bmp);
static_assert(ToPictureType(images::Type::WebP) == PictureType::WebP);
static_assert(ToPictureType(images::Type::Tiff) == PictureType::Tiff);
}  // namespace ipodkit
