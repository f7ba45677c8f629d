#include "picture/pixels.h"

// jpeglib.h requires <cstdio> first.
#include <cstdio>

#include <jpeglib.h>
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdint>

namespace ctl
{
namespace
{
using Bytes = std::vector<unsigned char>;

constexpr std::size_t kChannels = 4;
constexpr std::uint64_t kMostPixels = 16'000'000;
constexpr unsigned kLargeEnough = 512;

bool IsSensible(std::uint64_t width, std::uint64_t height)
{
    return width > 0 && height > 0 && width * height <= kMostPixels;
}

Pixels BlankPixels(std::size_t width, std::size_t height)
{
    return {static_cast<int>(width), static_cast<int>(height), Bytes(width * height * kChannels)};
}

std::optional<Pixels> DecodePng(const Bytes& picture)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, picture.data(), picture.size()) == 0) return std::nullopt;
    image.format = PNG_FORMAT_RGBA;
    const bool sensible = IsSensible(image.width, image.height);
    Pixels pixels = sensible ? BlankPixels(image.width, image.height) : Pixels{};
    const bool read = sensible && png_image_finish_read(&image, nullptr, pixels.bytes.data(), 0, nullptr) != 0;
    png_image_free(&image);
    return read ? std::optional<Pixels>(std::move(pixels)) : std::nullopt;
}

// LeaveJpeg() escapes from the library with longjmp() on an error.
struct JpegErrors
{
    jpeg_error_mgr base;
    std::jmp_buf back;
};

[[noreturn]] void LeaveJpeg(j_common_ptr info)
{
    std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->back, 1);
}

void DropMessage(j_common_ptr) {}

// No local variable may have a destructor: longjmp() would skip it.
bool ReadJpegHead(jpeg_decompress_struct& info, JpegErrors& errors, const Bytes& picture)
{
    info.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = LeaveJpeg;
    errors.base.output_message = DropMessage;
    if (setjmp(errors.back) != 0) return false;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, picture.data(), static_cast<unsigned long>(picture.size()));
    jpeg_read_header(&info, TRUE);
    if (!IsSensible(info.image_width, info.image_height)) return false;
    info.out_color_space = JCS_EXT_RGBA;
    info.scale_num = 1;
    for (info.scale_denom = 1; info.scale_denom < 8;)
    {
        if (std::min(info.image_width, info.image_height) / (info.scale_denom * 2) < kLargeEnough) break;
        info.scale_denom *= 2;
    }
    jpeg_calc_output_dimensions(&info);
    return true;
}

bool ReadJpegRows(jpeg_decompress_struct& info, JpegErrors& errors, unsigned char* rows)
{
    if (setjmp(errors.back) != 0) return false;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height)
    {
        JSAMPROW row = rows + std::size_t{info.output_scanline} * info.output_width * kChannels;
        jpeg_read_scanlines(&info, &row, 1);
    }
    return true;
}

std::optional<Pixels> DecodeJpeg(const Bytes& picture)
{
    jpeg_decompress_struct info{};
    JpegErrors errors{};
    const bool known = ReadJpegHead(info, errors, picture);
    Pixels pixels = known ? BlankPixels(info.output_width, info.output_height) : Pixels{};
    const bool read = known && ReadJpegRows(info, errors, pixels.bytes.data());
    jpeg_destroy_decompress(&info);
    return read ? std::optional<Pixels>(std::move(pixels)) : std::nullopt;
}
}  // namespace

std::optional<Pixels> Decode(const ipodkit::Picture& picture)
{
    if (picture.type == ipodkit::PictureType::Png) return DecodePng(picture.bytes);
    return picture.type == ipodkit::PictureType::Jpeg ? DecodeJpeg(picture.bytes) : std::nullopt;
}
}  // namespace ctl
