#include "phone/graphics/codecs.hpp"

#include <csetjmp>
#include <cstdio>   // jpeglib.h needs it first
#include <cstdlib>
#include <cstring>
#include <jpeglib.h>

namespace phone::graphics {

namespace {

// A progressive file may repeat scans without end in a few bytes each. This many pixels over all
// scans, and never fewer than sixteen scans, is beyond any camera's file.
constexpr double kMaxScannedPixels = 2e9;
constexpr int kMinScanLimit = 16;

struct ErrorHandler {
    jpeg_error_mgr manager;   // first: libjpeg hands back a pointer to it
    std::jmp_buf escape;
};

void escapeFromError(j_common_ptr info)
{
    std::longjmp(reinterpret_cast<ErrorHandler*>(info->err)->escape, 1);
}

void keepQuiet(j_common_ptr, int) { }
void printNothing(j_common_ptr) { }

jpeg_error_mgr* installErrorHandler(ErrorHandler& handler)
{
    jpeg_std_error(&handler.manager);
    handler.manager.error_exit = escapeFromError;
    handler.manager.emit_message = keepQuiet;
    handler.manager.output_message = printNothing;
    return &handler.manager;
}

struct ScanLimit {
    jpeg_progress_mgr manager;
    int limit;
};

void checkScans(j_common_ptr info)
{
    auto const* const scans = reinterpret_cast<ScanLimit const*>(info->progress);
    if (info->is_decompressor && reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > scans->limit)
        escapeFromError(info);
}

int orientationMarker(jpeg_decompress_struct const& info)
{
    constexpr std::size_t kPrefix = 6;   // "Exif\0\0"
    for (jpeg_saved_marker_ptr marker = info.marker_list; marker; marker = marker->next) {
        ImageData const data { marker->data, marker->data_length };
        if (marker->marker == JPEG_APP0 + 1 && data.size() > kPrefix
            && std::memcmp(data.data(), "Exif\0\0", kPrefix) == 0)
            return exifOrientation(data.subspan(kPrefix));
    }
    return 1;
}

// Cameras and editors store CMYK the Adobe way: inverted.
void convertCmykRow(std::uint8_t const* from, int width, bool isInverted, std::uint32_t* to)
{
    for (int x = 0; x < width; ++x, from += 4) {
        std::uint32_t ink[4];
        for (int i = 0; i < 4; ++i)
            ink[i] = isInverted ? from[i] : 255u - from[i];
        to[x] = 0xff000000u | multiplied(ink[0], ink[3]) << 16 | multiplied(ink[1], ink[3]) << 8
            | multiplied(ink[2], ink[3]);
    }
}

struct JpegReader {
    jpeg_decompress_struct info {};
    ErrorHandler errors {};
    ScanLimit scans {};
    std::vector<std::uint8_t> row;
    DecodedImage image;

    ~JpegReader() { jpeg_destroy_decompress(&info); }

    // False when the header can't be read or the picture is too large.
    bool readHeader(ImageData data)
    {
        info.err = installErrorHandler(errors);
        if (setjmp(errors.escape))
            return false;
        jpeg_create_decompress(&info);
        jpeg_save_markers(&info, JPEG_APP0 + 1, 0xffff);
        jpeg_mem_src(&info, data.data(), data.size());
        return jpeg_read_header(&info, TRUE) == JPEG_HEADER_OK
            && isAcceptablePixelSize(info.image_width, info.image_height);
    }

    // Before decode(), since making things between setjmp and longjmp would leak them.
    bool makeBitmap()
    {
        double const pixels = double(info.image_width) * info.image_height;
        scans.limit = std::max(kMinScanLimit, static_cast<int>(std::min(500.0, kMaxScannedPixels / pixels)));
        scans.manager.progress_monitor = checkScans;
        info.progress = &scans.manager;
        image.orientation = orientationMarker(info);
        image.bitmap =
            Bitmap::withPixels(static_cast<int>(info.image_width), static_cast<int>(info.image_height));
        row.resize(static_cast<std::size_t>(info.image_width) * 4);
        return bool(image.bitmap);
    }

    bool decode()
    {
        if (setjmp(errors.escape))
            return false;
        bool const isCmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
        info.out_color_space = isCmyk ? JCS_CMYK : JCS_EXT_BGRX;
        info.dct_method = JDCT_ISLOW;   // the one that is the same on every processor
        jpeg_start_decompress(&info);
        while (info.output_scanline < info.output_height) {
            int const y = static_cast<int>(info.output_scanline);
            std::uint32_t* const line = image.bitmap.row(y);
            JSAMPROW target = isCmyk ? row.data() : reinterpret_cast<JSAMPROW>(line);
            if (jpeg_read_scanlines(&info, &target, 1) != 1)
                return false;
            if (isCmyk)
                convertCmykRow(row.data(), image.bitmap.pixelWidth(), info.saw_Adobe_marker, line);
            else
                for (int x = 0; x < image.bitmap.pixelWidth(); ++x)
                    line[x] |= 0xff000000u;
        }
        jpeg_finish_decompress(&info);
        image.bitmap.markDirty();
        return true;
    }
};

struct JpegWriter {
    jpeg_compress_struct info {};
    ErrorHandler errors {};
    unsigned char* bytes { nullptr };
    unsigned long size { 0 };

    ~JpegWriter()
    {
        jpeg_destroy_compress(&info);
        std::free(bytes);
    }

    bool encode(Bitmap const& opaque, int quality)
    {
        info.err = installErrorHandler(errors);
        if (setjmp(errors.escape))
            return false;
        jpeg_create_compress(&info);
        jpeg_mem_dest(&info, &bytes, &size);
        info.image_width = static_cast<JDIMENSION>(opaque.pixelWidth());
        info.image_height = static_cast<JDIMENSION>(opaque.pixelHeight());
        info.input_components = 4;
        info.in_color_space = JCS_EXT_BGRX;
        jpeg_set_defaults(&info);
        jpeg_set_quality(&info, quality, TRUE);
        info.dct_method = JDCT_ISLOW;
        jpeg_start_compress(&info, TRUE);
        while (info.next_scanline < info.image_height) {
            auto* line = opaque.pixels() + static_cast<std::ptrdiff_t>(info.next_scanline) * opaque.stride();
            jpeg_write_scanlines(&info, &line, 1);
        }
        jpeg_finish_compress(&info);
        return true;
    }
};

}   // namespace

std::optional<Size> jpegPixelSize(ImageData data)
{
    JpegReader reader;
    if (!reader.readHeader(data))
        return std::nullopt;
    return Size { double(reader.info.image_width), double(reader.info.image_height) };
}

std::optional<DecodedImage> decodeJpeg(ImageData data)
{
    JpegReader reader;
    if (!reader.readHeader(data) || !reader.makeBitmap() || !reader.decode())
        return std::nullopt;
    return reader.image;
}

std::vector<std::uint8_t> encodeJpeg(Bitmap const& bitmap, int quality)
{
    if (!bitmap)
        return {};
    Bitmap const opaque = Bitmap::withPixels(bitmap.pixelWidth(), bitmap.pixelHeight());
    Context const context = opaque.newContext();
    if (!context)
        return {};
    cairo_set_source_rgb(context.get(), 1, 1, 1);
    cairo_paint(context.get());
    cairo_set_source_surface(context.get(), bitmap.surface(), 0, 0);
    cairo_paint(context.get());
    JpegWriter writer;
    if (!writer.encode(opaque, std::clamp(quality, 1, 100)))
        return {};
    return { writer.bytes, writer.bytes + writer.size };
}

}   // namespace phone::graphics
