// Picture files to bitmaps and back: PNG out; PNG, JPEG, WebP and (when built with libheif) HEIF in.
// Data may come from anywhere and be damaged: every function answers none rather than fail.
#pragma once

#include "phone/graphics/bitmap.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace phone::graphics {

enum class ImageFormat { png, jpeg, webp, heif };

// By the first bytes alone; none for anything else.
std::optional<ImageFormat> imageFormat(std::span<std::uint8_t const> data);

// Whether this build reads the format (HEIF is optional).
bool canDecode(ImageFormat);

// Pixels as they lie in the file, and how the file wants them turned.
struct DecodedImage {
    Bitmap bitmap;
    int orientation { 1 };   // EXIF 1 to 8; 1 is upright. HEIF comes out upright already.
};

// None when the format is unknown, the picture is larger than kMaxPixelSide or kMaxPixelCount, or
// the data is damaged beyond use. A JPEG that is cut off gives what is there, the rest grey.
std::optional<DecodedImage> decodeImage(std::span<std::uint8_t const> data, double scale = 1);

// The bitmap turned as the orientation says; what is shown to the user.
Bitmap upright(DecodedImage const&);

// decodeImage and upright in one; none (an empty bitmap) when it can't be read.
Bitmap decodeUpright(std::span<std::uint8_t const> data, double scale = 1);

// Size in pixels without decoding; none when the header isn't readable.
std::optional<Size> imagePixelSize(std::span<std::uint8_t const> data);

// Fast rather than small. Opaque pictures have no alpha channel in the file. Empty for none.
std::vector<std::uint8_t> encodePng(Bitmap const&);

// Quality 1 to 100; transparent parts come out on white. Empty for none.
std::vector<std::uint8_t> encodeJpeg(Bitmap const&, int quality);

// Whole files. Reading a missing or unreadable file, or one above 256 MB, gives none; writing
// answers whether every byte got there.
Bitmap readImageFile(std::string const& path, double scale = 1);
bool writePngFile(Bitmap const&, std::string const& path);

}   // namespace phone::graphics
