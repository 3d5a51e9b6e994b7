#include "phone/graphics/codecs.hpp"

#ifdef PHONE_GRAPHICS_HAS_HEIF
#    include <libheif/heif.h>
#endif

namespace phone::graphics {

#ifdef PHONE_GRAPHICS_HAS_HEIF

namespace {

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T* object) const
    {
        release(object);
    }
};
using HeifFile = std::unique_ptr<heif_context, Releaser<heif_context_free>>;
using HeifHandle = std::unique_ptr<heif_image_handle, Releaser<heif_image_handle_release>>;
using HeifImage = std::unique_ptr<heif_image, Releaser<heif_image_release>>;

// The primary picture; null on any error. Lives as long as the file.
HeifHandle primaryImage(heif_context* file, ImageData data)
{
    heif_image_handle* handle = nullptr;
    if (heif_context_read_from_memory_without_copy(file, data.data(), data.size(), nullptr).code
            != heif_error_Ok
        || heif_context_get_primary_image_handle(file, &handle).code != heif_error_Ok)
        return nullptr;
    return HeifHandle { handle };
}

}   // namespace

std::optional<Size> heifPixelSize(ImageData data)
{
    HeifFile const file { heif_context_alloc() };
    HeifHandle const handle = file ? primaryImage(file.get(), data) : nullptr;
    if (!handle)
        return std::nullopt;
    return Size { double(heif_image_handle_get_width(handle.get())),
        double(heif_image_handle_get_height(handle.get())) };
}

std::optional<DecodedImage> decodeHeif(ImageData data)
{
    HeifFile const file { heif_context_alloc() };
    if (!file)
        return std::nullopt;
    heif_context_set_maximum_image_size_limit(file.get(), kMaxPixelSide);
    HeifHandle const handle = primaryImage(file.get(), data);
    if (!handle
        || !isAcceptablePixelSize(
            heif_image_handle_get_width(handle.get()), heif_image_handle_get_height(handle.get())))
        return std::nullopt;
    heif_image* decoded = nullptr;
    if (heif_decode_image(handle.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr)
            .code
        != heif_error_Ok)
        return std::nullopt;
    HeifImage const image { decoded };
    int stride = 0;
    std::uint8_t const* const plane =
        heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    DecodedImage result;
    result.bitmap = Bitmap::withPixels(heif_image_get_width(image.get(), heif_channel_interleaved),
        heif_image_get_height(image.get(), heif_channel_interleaved));
    if (!plane || !result.bitmap)
        return std::nullopt;
    for (int y = 0; y < result.bitmap.pixelHeight(); ++y) {
        std::uint8_t const* from = plane + std::ptrdiff_t { stride } * y;
        std::uint32_t* const to = result.bitmap.row(y);
        for (int x = 0; x < result.bitmap.pixelWidth(); ++x, from += 4)
            to[x] = std::uint32_t { from[3] } << 24 | std::uint32_t { from[0] } << 16
                | std::uint32_t { from[1] } << 8 | from[2];
    }
    premultiply(result.bitmap);
    return result;
}

#else

std::optional<Size> heifPixelSize(ImageData) { return std::nullopt; }
std::optional<DecodedImage> decodeHeif(ImageData) { return std::nullopt; }

#endif

}   // namespace phone::graphics
