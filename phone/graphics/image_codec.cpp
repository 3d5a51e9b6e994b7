#include "phone/graphics/image_codec.hpp"

#include "phone/graphics/codecs.hpp"

#include <cstdio>
#include <cstring>
#include <string_view>

namespace phone::graphics {

namespace {

constexpr std::size_t kMaxFileBytes = 256u << 20;

bool hasBytes(ImageData data, std::size_t offset, std::string_view expected)
{
    return data.size() >= offset + expected.size()
        && std::memcmp(data.data() + offset, expected.data(), expected.size()) == 0;
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The main brands of still pictures coded with HEVC, and of the container's generic form.
constexpr std::string_view kHeifBrands[] = { "heic", "heix", "heim", "heis", "mif1", "msf1", "hevc", "hevx" };

class ByteReader {
public:
    ByteReader(ImageData data, bool isLittleEndian)
        : m_data(data)
        , m_isLittleEndian(isLittleEndian)
    {
    }

    std::optional<std::uint32_t> number(std::size_t offset, std::size_t length) const
    {
        if (offset > m_data.size() || m_data.size() - offset < length)
            return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < length; ++i) {
            std::size_t const index = m_isLittleEndian ? length - 1 - i : i;
            value = value << 8 | m_data[offset + index];
        }
        return value;
    }

private:
    ImageData m_data;
    bool m_isLittleEndian;
};

}   // namespace

std::optional<ImageFormat> imageFormat(ImageData data)
{
    if (hasBytes(data, 0, "\x89PNG\r\n\x1a\n"))
        return ImageFormat::png;
    if (hasBytes(data, 0, "\xff\xd8\xff"))
        return ImageFormat::jpeg;
    if (hasBytes(data, 0, "RIFF") && hasBytes(data, 8, "WEBP"))
        return ImageFormat::webp;
    if (hasBytes(data, 4, "ftyp")) {
        for (std::string_view brand : kHeifBrands) {
            if (hasBytes(data, 8, brand))
                return ImageFormat::heif;
        }
    }
    return std::nullopt;
}

bool canDecode([[maybe_unused]] ImageFormat format)
{
#ifdef PHONE_GRAPHICS_HAS_HEIF
    return true;
#else
    return format != ImageFormat::heif;
#endif
}

std::optional<DecodedImage> decodeImage(ImageData data, double scale)
{
    auto const format = imageFormat(data);
    if (!format || data.size() > kMaxFileBytes)
        return std::nullopt;
    std::optional<DecodedImage> image;
    switch (*format) {
    case ImageFormat::png: image = decodePng(data); break;
    case ImageFormat::jpeg: image = decodeJpeg(data); break;
    case ImageFormat::webp: image = decodeWebp(data); break;
    case ImageFormat::heif: image = decodeHeif(data); break;
    }
    if (!image || !image->bitmap)
        return std::nullopt;
    image->bitmap = image->bitmap.withScale(scale);
    return image;
}

std::optional<Size> imagePixelSize(ImageData data)
{
    auto const format = imageFormat(data);
    if (!format)
        return std::nullopt;
    switch (*format) {
    case ImageFormat::png: return pngPixelSize(data);
    case ImageFormat::jpeg: return jpegPixelSize(data);
    case ImageFormat::webp: return webpPixelSize(data);
    case ImageFormat::heif: return heifPixelSize(data);
    }
    return std::nullopt;
}

Bitmap upright(DecodedImage const& image)
{
    Bitmap const& from = image.bitmap;
    int const orientation = image.orientation;
    if (!from || orientation <= 1 || orientation > 8)
        return from;
    int const width = from.pixelWidth();
    int const height = from.pixelHeight();
    bool const swapsSides = orientation >= 5;
    Bitmap result = swapsSides ? Bitmap::withPixels(height, width, from.scale())
                               : Bitmap::withPixels(width, height, from.scale());
    if (!result)
        return result;
    // EXIF names where the stored first row and first column are seen.
    bool const flipsX = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    bool const flipsY = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    for (int y = 0; y < result.pixelHeight(); ++y) {
        std::uint32_t* const out = result.row(y);
        if (!swapsSides) {
            std::uint32_t const* const line = from.row(flipsY ? height - 1 - y : y);
            for (int x = 0; x < width; ++x)
                out[x] = line[flipsX ? width - 1 - x : x];
            continue;
        }
        int const column = flipsX ? width - 1 - y : y;
        for (int x = 0; x < height; ++x)
            out[x] = from.row(flipsY ? height - 1 - x : x)[column];
    }
    result.markDirty();
    return result;
}

Bitmap decodeUpright(ImageData data, double scale)
{
    auto const image = decodeImage(data, scale);
    return image ? upright(*image) : Bitmap {};
}

int exifOrientation(ImageData tiff)
{
    constexpr std::uint32_t kOrientationTag = 0x0112;
    bool const isLittleEndian = hasBytes(tiff, 0, "II");
    if (!isLittleEndian && !hasBytes(tiff, 0, "MM"))
        return 1;
    ByteReader const reader { tiff, isLittleEndian };
    auto const directory = reader.number(4, 4);
    auto const count = directory ? reader.number(*directory, 2) : std::nullopt;
    if (!count || reader.number(2, 2) != 42u)
        return 1;
    for (std::uint32_t i = 0; i < *count; ++i) {
        std::size_t const entry = std::size_t { *directory } + 2 + std::size_t { i } * 12;
        auto const tag = reader.number(entry, 2);
        if (!tag)
            return 1;
        if (tag != kOrientationTag)
            continue;
        auto const value = reader.number(entry + 8, 2);
        return value && *value >= 1 && *value <= 8 ? static_cast<int>(*value) : 1;
    }
    return 1;
}

void premultiply(Bitmap& bitmap)
{
    for (int y = 0; y < bitmap.pixelHeight(); ++y) {
        std::uint32_t* const line = bitmap.row(y);
        for (int x = 0; x < bitmap.pixelWidth(); ++x) {
            std::uint32_t const pixel = line[x];
            std::uint32_t const alpha = pixel >> 24;
            if (alpha == 255)
                continue;
            line[x] = alpha << 24 | multiplied((pixel >> 16) & 0xff, alpha) << 16
                | multiplied((pixel >> 8) & 0xff, alpha) << 8 | multiplied(pixel & 0xff, alpha);
        }
    }
    bitmap.markDirty();
}

Bitmap readImageFile(std::string const& path, double scale)
{
    File const file { std::fopen(path.c_str(), "rb") };
    if (!file)
        return {};
    std::vector<std::uint8_t> data;
    std::uint8_t buffer[65536];
    while (std::size_t const count = std::fread(buffer, 1, sizeof buffer, file.get())) {
        if (data.size() + count > kMaxFileBytes)
            return {};
        data.insert(data.end(), buffer, buffer + count);
    }
    return std::ferror(file.get()) ? Bitmap {} : decodeUpright(data, scale);
}

bool writePngFile(Bitmap const& bitmap, std::string const& path)
{
    std::vector<std::uint8_t> const data = encodePng(bitmap);
    File file { std::fopen(path.c_str(), "wb") };
    if (data.empty() || !file)
        return false;
    bool const isWritten = std::fwrite(data.data(), 1, data.size(), file.get()) == data.size();
    return std::fclose(file.release()) == 0 && isWritten;
}

}   // namespace phone::graphics
