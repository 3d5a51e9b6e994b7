#include "phone/graphics/codecs.hpp"

#include <webp/decode.h>
#include <webp/demux.h>

namespace phone::graphics {

namespace {

struct DemuxerDeleter {
    void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};
using Demuxer = std::unique_ptr<WebPDemuxer, DemuxerDeleter>;

Demuxer demuxer(ImageData data)
{
    WebPData const bytes { data.data(), data.size() };
    return Demuxer { WebPDemux(&bytes) };
}

int webpOrientation(WebPDemuxer const* demuxer)
{
    WebPChunkIterator chunk;
    int orientation = 1;
    if (WebPDemuxGetChunk(demuxer, "EXIF", 1, &chunk)) {
        ImageData data { chunk.chunk.bytes, chunk.chunk.size };
        // Some writers keep JPEG's prefix in front of the TIFF header.
        constexpr std::size_t kPrefix = 6;
        if (data.size() > kPrefix && data[0] == 'E' && data[1] == 'x')
            data = data.subspan(kPrefix);
        orientation = exifOrientation(data);
        WebPDemuxReleaseChunkIterator(&chunk);
    }
    return orientation;
}

}   // namespace

std::optional<Size> webpPixelSize(ImageData data)
{
    int width = 0;
    int height = 0;
    if (!WebPGetInfo(data.data(), data.size(), &width, &height))
        return std::nullopt;
    return Size { double(width), double(height) };
}

std::optional<DecodedImage> decodeWebp(ImageData data)
{
    auto const size = webpPixelSize(data);
    if (!size
        || !isAcceptablePixelSize(
            static_cast<std::int64_t>(size->width), static_cast<std::int64_t>(size->height)))
        return std::nullopt;
    Demuxer const file = demuxer(data);
    WebPIterator frame;
    if (!file || !WebPDemuxGetFrame(file.get(), 1, &frame))
        return std::nullopt;
    // Of an animation the first frame is the picture, at its place on the canvas.
    DecodedImage result;
    result.bitmap = Bitmap::withPixels(static_cast<int>(size->width), static_cast<int>(size->height));
    WebPDecoderConfig config;
    bool isRead = result.bitmap && WebPInitDecoderConfig(&config)
        && WebPGetFeatures(frame.fragment.bytes, frame.fragment.size, &config.input) == VP8_STATUS_OK
        && frame.x_offset >= 0 && frame.y_offset >= 0
        && frame.x_offset + config.input.width <= result.bitmap.pixelWidth()
        && frame.y_offset + config.input.height <= result.bitmap.pixelHeight();
    if (isRead) {
        int const stride = static_cast<int>(result.bitmap.stride());
        std::ptrdiff_t const start =
            std::ptrdiff_t { frame.y_offset } * stride + std::ptrdiff_t { frame.x_offset } * 4;
        std::size_t const room =
            static_cast<std::size_t>(std::ptrdiff_t { stride } * result.bitmap.pixelHeight() - start);
        config.output.colorspace = MODE_bgrA;   // premultiplied
        config.output.is_external_memory = 1;
        config.output.u.RGBA = { result.bitmap.pixels() + start, stride, room };
        isRead = WebPDecode(frame.fragment.bytes, frame.fragment.size, &config) == VP8_STATUS_OK;
        WebPFreeDecBuffer(&config.output);
        result.bitmap.markDirty();
    }
    WebPDemuxReleaseIterator(&frame);
    if (!isRead)
        return std::nullopt;
    result.orientation = webpOrientation(file.get());
    return result;
}

}   // namespace phone::graphics
