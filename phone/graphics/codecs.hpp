// One decoder and encoder a format, behind image_codec.hpp. Each answers none on data that it can't
// use, never raises, and prints nothing (but libheif's HEVC decoder may name an error of its own).
#pragma once

#include "phone/graphics/image_codec.hpp"

namespace phone::graphics {

using ImageData = std::span<std::uint8_t const>;

std::optional<DecodedImage> decodePng(ImageData);
std::optional<DecodedImage> decodeJpeg(ImageData);
std::optional<DecodedImage> decodeWebp(ImageData);
std::optional<DecodedImage> decodeHeif(ImageData);

std::optional<Size> pngPixelSize(ImageData);
std::optional<Size> jpegPixelSize(ImageData);
std::optional<Size> webpPixelSize(ImageData);
std::optional<Size> heifPixelSize(ImageData);

// Orientation tag of an EXIF block (TIFF header onwards); 1 when it is missing or not 1 to 8.
int exifOrientation(ImageData tiff);

// Straight BGRA bytes to premultiplied words, in place.
void premultiply(Bitmap&);

// c * a / 255, rounded to nearest.
inline std::uint32_t multiplied(std::uint32_t channel, std::uint32_t alpha)
{
    std::uint32_t const product = channel * alpha + 128;
    return (product + (product >> 8)) >> 8;
}

}   // namespace phone::graphics
