#include "phone/graphics/codecs.hpp"

#include <bit>
#include <csetjmp>
#include <cstring>
#include <png.h>

static_assert(std::endian::native == std::endian::little, "pixel words are read as BGRA bytes");

namespace phone::graphics {

namespace {

constexpr std::size_t kHeaderEnd = 33;   // signature 8, IHDR chunk 25

// A full-screen screenshot takes 0.16 s at zlib's default level, and a quarter of it at 2.
constexpr int kCompressionLevel = 2;

std::uint32_t bigEndian(ImageData data, std::size_t offset)
{
    return std::uint32_t { data[offset] } << 24 | std::uint32_t { data[offset + 1] } << 16
        | std::uint32_t { data[offset + 2] } << 8 | data[offset + 3];
}

// Orientation of an eXIf chunk, which comes before the pixels where it exists.
int pngOrientation(ImageData data)
{
    std::size_t offset = 8;
    while (data.size() - offset >= 12) {
        std::size_t const length = bigEndian(data, offset);
        if (length > data.size() - offset - 12)
            return 1;
        if (std::memcmp(data.data() + offset + 4, "eXIf", 4) == 0)
            return exifOrientation(data.subspan(offset + 8, length));
        offset += length + 12;
    }
    return 1;
}

struct PngWriter {
    png_structp png { nullptr };
    png_infop info { nullptr };
    ~PngWriter() { png_destroy_write_struct(&png, &info); }
};

void append(png_structp png, png_bytep bytes, std::size_t count)
{
    auto* const out = static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
    out->insert(out->end(), bytes, bytes + count);
}

void ignore(png_structp, png_const_charp) { }

// Straight colours of one row, in the file's order of channels.
void convertRow(std::uint32_t const* from, int width, bool isOpaque, std::uint8_t* to)
{
    for (int x = 0; x < width; ++x) {
        std::uint32_t const pixel = from[x];
        std::uint32_t const alpha = isOpaque ? 255 : pixel >> 24;
        for (int shift = 16; shift >= 0; shift -= 8) {
            std::uint32_t const channel = (pixel >> shift) & 0xff;
            bool const isStraight = alpha == 255 || alpha == 0;
            *to++ = static_cast<std::uint8_t>(
                isStraight ? channel : std::min(255u, (channel * 255 + alpha / 2) / alpha));
        }
        if (!isOpaque)
            *to++ = static_cast<std::uint8_t>(alpha);
    }
}

// False when libpng gives up. Nothing with a destructor may be made between setjmp and the end.
bool writeRows(PngWriter& writer, Bitmap const& bitmap, bool isOpaque, std::uint8_t* row)
{
    if (setjmp(png_jmpbuf(writer.png)))
        return false;
    png_set_compression_level(writer.png, kCompressionLevel);
    png_set_filter(writer.png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(bitmap.pixelWidth()),
        static_cast<png_uint_32>(bitmap.pixelHeight()), 8,
        isOpaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
        PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(writer.png, writer.info);
    for (int y = 0; y < bitmap.pixelHeight(); ++y) {
        convertRow(bitmap.row(y), bitmap.pixelWidth(), isOpaque, row);
        png_write_row(writer.png, row);
    }
    png_write_end(writer.png, nullptr);
    return true;
}

}   // namespace

std::optional<Size> pngPixelSize(ImageData data)
{
    if (data.size() < kHeaderEnd || std::memcmp(data.data() + 12, "IHDR", 4) != 0)
        return std::nullopt;
    return Size { double(bigEndian(data, 16)), double(bigEndian(data, 20)) };
}

std::optional<DecodedImage> decodePng(ImageData data)
{
    // Before libpng sees the data: it would take memory for whatever the header claims.
    auto const size = pngPixelSize(data);
    if (!size
        || !isAcceptablePixelSize(
            static_cast<std::int64_t>(size->width), static_cast<std::int64_t>(size->height)))
        return std::nullopt;
    png_image image {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, data.data(), data.size()))
        return std::nullopt;
    image.format = PNG_FORMAT_BGRA;
    image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    DecodedImage result;
    result.bitmap = Bitmap::withPixels(static_cast<int>(image.width), static_cast<int>(image.height));
    bool const isRead = result.bitmap
        && png_image_finish_read(&image, nullptr, result.bitmap.pixels(),
            static_cast<png_int_32>(result.bitmap.stride()), nullptr);
    png_image_free(&image);
    if (!isRead)
        return std::nullopt;
    premultiply(result.bitmap);
    result.orientation = pngOrientation(data);
    return result;
}

std::vector<std::uint8_t> encodePng(Bitmap const& bitmap)
{
    std::vector<std::uint8_t> data;
    if (!bitmap)
        return data;
    PngWriter writer;
    writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, ignore);
    writer.info = writer.png ? png_create_info_struct(writer.png) : nullptr;
    if (!writer.info)
        return data;
    bool const isOpaque = bitmap.isOpaque();
    std::vector<std::uint8_t> row(static_cast<std::size_t>(bitmap.pixelWidth()) * 4);
    png_set_write_fn(writer.png, &data, append, nullptr);
    if (!writeRows(writer, bitmap, isOpaque, row.data()))
        data.clear();
    return data;
}

}   // namespace phone::graphics
