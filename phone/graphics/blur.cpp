#include "phone/graphics/blur.hpp"

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace phone::graphics {

namespace {

constexpr double kContext = 2.5;   // sigmas of surroundings that still bear on the edge

// Three box blurs one after the other look like a Gaussian; their widths are chosen so that the
// variances add up to the one wanted (after Kovesi, "Fast almost-Gaussian filtering", 2010).
constexpr int kBoxes = 3;

std::array<int, kBoxes> boxRadii(double sigma)
{
    double const ideal = std::sqrt(12 * sigma * sigma / kBoxes + 1);
    int lower = static_cast<int>(std::floor(ideal));
    if (lower % 2 == 0)
        --lower;
    lower = std::max(lower, 1);
    double const small = (12 * sigma * sigma - kBoxes * lower * lower - 4.0 * kBoxes * lower - 3.0 * kBoxes)
        / (-4.0 * lower - 4);
    int const smallCount = std::clamp(static_cast<int>(std::lround(small)), 0, kBoxes);
    std::array<int, kBoxes> radii {};
    for (int i = 0; i < kBoxes; ++i)
        radii[static_cast<std::size_t>(i)] = ((i < smallCount ? lower : lower + 2) - 1) / 2;
    return radii;
}

// Pixels as four 16-bit channels with 8 bits of fraction, so that six passes of rounding leave
// no steps in a smooth picture.
struct Planes {
    int width { 0 };
    int height { 0 };
    std::vector<std::uint16_t> channels;

    std::uint16_t* pixel(int x, int y)
    {
        return channels.data()
            + (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x))
            * 4;
    }
};

Planes makePlanes(int width, int height)
{
    Planes planes { width, height, {} };
    planes.channels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    return planes;
}

// Averages factor x factor squares of the bitmap from (left, top) on; squares that stick out are
// averaged over the part inside.
Planes downsampled(Bitmap const& bitmap, int left, int top, int width, int height, int factor)
{
    Planes planes = makePlanes((width + factor - 1) / factor, (height + factor - 1) / factor);
    std::uint32_t const* const pixels = bitmap.row(top) + left;
    std::ptrdiff_t const stride = bitmap.stride() / 4;
    for (int y = 0; y < planes.height; ++y) {
        int const rowEnd = std::min((y + 1) * factor, height);
        for (int x = 0; x < planes.width; ++x) {
            int const columnEnd = std::min((x + 1) * factor, width);
            // Two channels in each sum: 64 pixels of 255 stay within 16 bits.
            std::uint32_t blueRed = 0;
            std::uint32_t greenAlpha = 0;
            for (int v = y * factor; v < rowEnd; ++v) {
                std::uint32_t const* const line = pixels + std::ptrdiff_t { v } * stride;
                for (int u = x * factor; u < columnEnd; ++u) {
                    blueRed += line[u] & 0x00ff00ffu;
                    greenAlpha += (line[u] >> 8) & 0x00ff00ffu;
                }
            }
            std::uint32_t const count =
                static_cast<std::uint32_t>((rowEnd - y * factor) * (columnEnd - x * factor));
            std::uint32_t const sums[4] = { blueRed & 0xffff, greenAlpha & 0xffff, blueRed >> 16,
                greenAlpha >> 16 };
            std::uint16_t* const out = planes.pixel(x, y);
            for (int c = 0; c < 4; ++c)
                out[c] = static_cast<std::uint16_t>((sums[c] * 256 + count / 2) / count);
        }
    }
    return planes;
}

// One box pass over a line of `count` pixels; edges repeat outwards. `step` in 16-bit units.
void boxPass(std::uint16_t const* from, std::uint16_t* to, int count, std::ptrdiff_t step, int radius)
{
    std::uint32_t const window = static_cast<std::uint32_t>(2 * radius + 1);
    // Division by the window as a multiplication: exact enough, since sums stay below 2^16 * window.
    std::uint64_t const reciprocal = ((std::uint64_t { 1 } << 32) + window / 2) / window;
    std::uint64_t sums[4];
    auto at = [&](int index) { return from + std::clamp(index, 0, count - 1) * step; };
    for (int c = 0; c < 4; ++c) {
        sums[c] = window / 2;
        for (int i = -radius; i <= radius; ++i)
            sums[c] += at(i)[c];
    }
    for (int i = 0; i < count; ++i) {
        std::uint16_t const* const incoming = at(i + radius + 1);
        std::uint16_t const* const outgoing = at(i - radius);
        for (int c = 0; c < 4; ++c) {
            to[i * step + c] = static_cast<std::uint16_t>((sums[c] * reciprocal) >> 32);
            sums[c] += incoming[c];
            sums[c] -= outgoing[c];
        }
    }
}

void blurPlanes(Planes& planes, double sigma)
{
    if (!(sigma > 0.3))
        return;
    Planes scratch = makePlanes(planes.width, planes.height);
    std::ptrdiff_t const rowStep = std::ptrdiff_t { planes.width } * 4;
    for (int const radius : boxRadii(sigma)) {
        if (radius <= 0)
            continue;
        for (int y = 0; y < planes.height; ++y)
            boxPass(planes.pixel(0, y), scratch.pixel(0, y), planes.width, 4, radius);
        for (int x = 0; x < planes.width; ++x)
            boxPass(scratch.pixel(x, 0), planes.pixel(x, 0), planes.height, rowStep, radius);
    }
}

// Saturation around luminance (Rec. 709 weights on the premultiplied channels), then the tint
// over it. Channel order in memory: blue, green, red, alpha.
Bitmap finished(Planes& planes, double saturation, Color const& tint)
{
    Bitmap bitmap = Bitmap::withPixels(planes.width, planes.height);
    if (!bitmap)
        return bitmap;
    float const strength = static_cast<float>(saturation);
    float const tintAlpha = static_cast<float>(tint.alpha);
    float const tints[3] = { static_cast<float>(tint.blue * tint.alpha) * 255,
        static_cast<float>(tint.green * tint.alpha) * 255, static_cast<float>(tint.red * tint.alpha) * 255 };
    for (int y = 0; y < planes.height; ++y) {
        std::uint32_t* const out = bitmap.row(y);
        for (int x = 0; x < planes.width; ++x) {
            std::uint16_t const* const in = planes.pixel(x, y);
            float const alpha = in[3] / 256.0f;
            float const luminance = (0.0722f * in[0] + 0.7152f * in[1] + 0.2126f * in[2]) / 256;
            // The tint covers the backdrop only where there is one: a hole stays a hole.
            float const presence = alpha / 255;
            float const outAlpha = alpha;
            std::uint32_t pixel = static_cast<std::uint32_t>(outAlpha + 0.5f) << 24;
            for (int c = 0; c < 3; ++c) {
                float value = luminance + (in[c] / 256.0f - luminance) * strength;
                value = value * (1 - tintAlpha) + tints[c] * presence;
                value = std::clamp(value, 0.0f, outAlpha);
                pixel |= static_cast<std::uint32_t>(value + 0.5f) << (8 * c);
            }
            out[x] = pixel;
        }
    }
    bitmap.markDirty();
    return bitmap;
}

int downsampleFactor(double sigmaPixels)
{
    if (sigmaPixels <= 2)
        return 1;
    if (sigmaPixels <= 6)
        return 2;
    return sigmaPixels <= 16 ? 4 : 8;
}

// The image surface that the context draws on now, as a bitmap over its memory, with the offset
// of device space on it (a group's own surface begins somewhere inside the parent).
struct Target {
    Bitmap bitmap;
    double offsetX { 0 };
    double offsetY { 0 };
};

Target currentTarget(cairo_t* context)
{
    cairo_surface_t* const surface = cairo_get_group_target(context);
    if (cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE)
        return {};
    cairo_format_t const format = cairo_image_surface_get_format(surface);
    if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24)
        return {};
    cairo_surface_flush(surface);
    Target target;
    target.bitmap =
        Bitmap::overMemory(cairo_image_surface_get_data(surface), cairo_image_surface_get_width(surface),
            cairo_image_surface_get_height(surface), cairo_image_surface_get_stride(surface), 1);
    cairo_surface_get_device_offset(surface, &target.offsetX, &target.offsetY);
    return target;
}

// In device space, whatever the transform.
Rect devicePathExtents(cairo_t* context)
{
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    cairo_identity_matrix(context);
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    cairo_path_extents(context, &left, &top, &right, &bottom);
    cairo_set_matrix(context, &matrix);
    return { left, top, right - left, bottom - top };
}

double deviceScale(cairo_t* context)
{
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    return std::sqrt(std::abs(matrix.xx * matrix.yy - matrix.xy * matrix.yx));
}

}   // namespace

Backdrop takeBackdrop(cairo_t* context, BlurStyle const& style)
{
    Target const target = currentTarget(context);
    Rect const extents = devicePathExtents(context).offset(target.offsetX, target.offsetY);
    double const sigma = std::max(0.0, style.sigma) * deviceScale(context);
    Rect const surface { 0, 0, double(target.bitmap.pixelWidth()), double(target.bitmap.pixelHeight()) };
    if (!target.bitmap || extents.isEmpty() || intersection(extents, surface).isEmpty())
        return {};
    Backdrop backdrop;
    backdrop.factor = downsampleFactor(sigma);
    // One square more than the blur needs, for the bilinear filter that enlarges it again. Squares lie
    // on a grid fixed to the surface, so that a backdrop doesn't shimmer while the view moves.
    double const margin = kContext * sigma + backdrop.factor;
    Rect const region = intersection(extents.inset(-margin, -margin), surface);
    int const factor = backdrop.factor;
    int const left = static_cast<int>(std::floor(region.x)) / factor * factor;
    int const top = static_cast<int>(std::floor(region.y)) / factor * factor;
    int const width = static_cast<int>(std::ceil(region.maxX())) - left;
    int const height = static_cast<int>(std::ceil(region.maxY())) - top;
    Planes planes = downsampled(target.bitmap, left, top, width, height, factor);
    blurPlanes(planes, sigma / factor);
    backdrop.bitmap = finished(planes, style.saturation, style.tint);
    backdrop.isOpaque = backdrop.bitmap.isOpaque();
    backdrop.deviceX = left - target.offsetX;
    backdrop.deviceY = top - target.offsetY;
    return backdrop;
}

void paintBackdrop(cairo_t* context, Backdrop const& backdrop, double alpha)
{
    if (!backdrop.bitmap || alpha <= 0) {
        cairo_new_path(context);
        return;
    }
    // The path stands in device space already, so that the matrix may change under it.
    cairo_save(context);
    cairo_identity_matrix(context);
    cairo_translate(context, backdrop.deviceX, backdrop.deviceY);
    cairo_scale(context, backdrop.factor, backdrop.factor);
    cairo_set_source_surface(context, backdrop.bitmap.surface(), 0, 0);
    cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(
        cairo_get_source(context), backdrop.factor == 1 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
    // Where the backdrop itself is translucent it stands in for what was there, rather than lie over it.
    cairo_set_operator(context, backdrop.isOpaque ? CAIRO_OPERATOR_OVER : CAIRO_OPERATOR_SOURCE);
    if (alpha < 1) {
        cairo_clip(context);
        cairo_paint_with_alpha(context, alpha);
    } else {
        cairo_fill(context);
    }
    cairo_restore(context);
}

void blurBeneathPath(cairo_t* context, BlurStyle const& style, double alpha)
{
    paintBackdrop(context, takeBackdrop(context, style), alpha);
}

Bitmap blurred(Bitmap const& bitmap, double sigmaPixels)
{
    if (!bitmap)
        return {};
    Planes planes = downsampled(bitmap, 0, 0, bitmap.pixelWidth(), bitmap.pixelHeight(), 1);
    blurPlanes(planes, sigmaPixels);
    return finished(planes, 1, { 0, 0, 0, 0 }).withScale(bitmap.scale());
}

}   // namespace phone::graphics
