#include "phone/graphics/bitmap.hpp"

#include <cmath>
#include <cstring>

namespace phone::graphics {

namespace {

std::shared_ptr<cairo_surface_t> owned(cairo_surface_t* surface)
{
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    return { surface, cairo_surface_destroy };
}

bool isAcceptableScale(double scale) { return scale > 0 && std::isfinite(scale); }

}   // namespace

bool isAcceptablePixelSize(std::int64_t width, std::int64_t height)
{
    return width > 0 && height > 0 && width <= kMaxPixelSide && height <= kMaxPixelSide
        && width * height <= kMaxPixelCount;
}

void ContextDeleter::operator()(cairo_t* context) const { cairo_destroy(context); }

Bitmap Bitmap::withPoints(Size points, double scale)
{
    double const width = points.width * scale;
    double const height = points.height * scale;
    if (!isAcceptableScale(scale) || !(width > 0 && width <= kMaxPixelSide)
        || !(height > 0 && height <= kMaxPixelSide))
        return {};
    auto pixels = [](double length) { return std::max(1, static_cast<int>(std::lround(length))); };
    return withPixels(pixels(width), pixels(height), scale);
}

Bitmap Bitmap::withPixels(int width, int height, double scale)
{
    Bitmap bitmap;
    if (!isAcceptablePixelSize(width, height) || !isAcceptableScale(scale))
        return bitmap;
    bitmap.m_surface = owned(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    bitmap.m_scale = scale;
    return bitmap;
}

Bitmap Bitmap::overMemory(std::uint8_t* argb32, int width, int height, std::ptrdiff_t stride, double scale)
{
    Bitmap bitmap;
    if (!argb32 || !isAcceptablePixelSize(width, height) || !isAcceptableScale(scale))
        return bitmap;
    bitmap.m_surface = owned(cairo_image_surface_create_for_data(
        argb32, CAIRO_FORMAT_ARGB32, width, height, static_cast<int>(stride)));
    bitmap.m_scale = scale;
    return bitmap;
}

int Bitmap::pixelWidth() const { return m_surface ? cairo_image_surface_get_width(m_surface.get()) : 0; }

int Bitmap::pixelHeight() const { return m_surface ? cairo_image_surface_get_height(m_surface.get()) : 0; }

Size Bitmap::size() const { return { pixelWidth() / m_scale, pixelHeight() / m_scale }; }

Bitmap Bitmap::withScale(double scale) const
{
    Bitmap bitmap = *this;
    if (isAcceptableScale(scale))
        bitmap.m_scale = scale;
    return bitmap;
}

Bitmap Bitmap::copy() const
{
    Bitmap bitmap = withPixels(pixelWidth(), pixelHeight(), m_scale);
    if (!bitmap)
        return bitmap;
    for (int y = 0; y < pixelHeight(); ++y)
        std::memcpy(bitmap.row(y), row(y), static_cast<std::size_t>(pixelWidth()) * 4);
    bitmap.markDirty();
    return bitmap;
}

std::uint8_t* Bitmap::pixels() const
{
    if (!m_surface)
        return nullptr;
    cairo_surface_flush(m_surface.get());
    return cairo_image_surface_get_data(m_surface.get());
}

std::ptrdiff_t Bitmap::stride() const
{
    return m_surface ? cairo_image_surface_get_stride(m_surface.get()) : 0;
}

std::uint32_t const* Bitmap::row(int y) const
{
    return reinterpret_cast<std::uint32_t const*>(pixels() + y * stride());
}

std::uint32_t* Bitmap::row(int y) { return reinterpret_cast<std::uint32_t*>(pixels() + y * stride()); }

void Bitmap::markDirty() const
{
    if (m_surface)
        cairo_surface_mark_dirty(m_surface.get());
}

Context Bitmap::newContext() const
{
    if (!m_surface)
        return nullptr;
    Context context { cairo_create(m_surface.get()) };
    cairo_scale(context.get(), m_scale, m_scale);
    return context;
}

bool Bitmap::isOpaque() const
{
    for (int y = 0; y < pixelHeight(); ++y) {
        std::uint32_t const* const line = row(y);
        for (int x = 0; x < pixelWidth(); ++x) {
            if (line[x] < 0xff000000u)
                return false;
        }
    }
    return m_surface != nullptr;
}

void Bitmap::clear() const
{
    Context const context = newContext();
    if (!context)
        return;
    cairo_set_operator(context.get(), CAIRO_OPERATOR_CLEAR);
    cairo_paint(context.get());
}

Bitmap cropped(Bitmap const& bitmap, Rect pixels)
{
    // Every comparison with NaN is false, so such a rectangle ends here too.
    if (!bitmap || !(pixels.width > 0) || !(pixels.height > 0) || !std::isfinite(pixels.x)
        || !std::isfinite(pixels.y))
        return {};
    auto clamped = [](double value, int limit) {
        return static_cast<int>(std::clamp(value, 0.0, double(limit)));
    };
    int const left = clamped(std::floor(pixels.x), bitmap.pixelWidth());
    int const top = clamped(std::floor(pixels.y), bitmap.pixelHeight());
    int const right = clamped(std::ceil(pixels.maxX()), bitmap.pixelWidth());
    int const bottom = clamped(std::ceil(pixels.maxY()), bitmap.pixelHeight());
    Bitmap result = Bitmap::withPixels(right - left, bottom - top, bitmap.scale());
    if (!result)
        return result;
    for (int y = top; y < bottom; ++y)
        std::memcpy(result.row(y - top), bitmap.row(y) + left, static_cast<std::size_t>(right - left) * 4);
    result.markDirty();
    return result;
}

Bitmap tinted(Bitmap const& bitmap, Color color)
{
    Bitmap result = Bitmap::withPixels(bitmap.pixelWidth(), bitmap.pixelHeight(), bitmap.scale());
    if (!result)
        return result;
    Context const context { cairo_create(result.surface()) };
    cairo_set_source_rgba(context.get(), color.red, color.green, color.blue, color.alpha);
    cairo_mask_surface(context.get(), bitmap.surface(), 0, 0);
    return result;
}

Bitmap resized(Bitmap const& bitmap, Size points, double scale)
{
    if (!bitmap)
        return {};
    Bitmap const result = Bitmap::withPoints(points, scale);
    if (result)
        drawBitmap(result.newContext().get(), bitmap, result.bounds());
    return result;
}

Bitmap mirrored(Bitmap const& bitmap)
{
    Bitmap result = Bitmap::withPixels(bitmap.pixelWidth(), bitmap.pixelHeight(), bitmap.scale());
    if (!result)
        return result;
    for (int y = 0; y < bitmap.pixelHeight(); ++y)
        std::reverse_copy(bitmap.row(y), bitmap.row(y) + bitmap.pixelWidth(), result.row(y));
    result.markDirty();
    return result;
}

void drawBitmap(cairo_t* context, Bitmap const& bitmap, Rect rect, double alpha)
{
    if (!bitmap || rect.isEmpty() || alpha <= 0)
        return;
    cairo_save(context);
    cairo_rectangle(context, rect.x, rect.y, rect.width, rect.height);
    cairo_clip(context);
    cairo_translate(context, rect.x, rect.y);
    cairo_scale(context, rect.width / bitmap.pixelWidth(), rect.height / bitmap.pixelHeight());
    cairo_set_source_surface(context, bitmap.surface(), 0, 0);
    cairo_pattern_t* const source = cairo_get_source(context);
    // Padding keeps the border pixels from fading into nothing where the filter reaches past them.
    cairo_pattern_set_extend(source, CAIRO_EXTEND_PAD);
    // Pixel on pixel needs no filter, and the nearest one is exact and several times faster.
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    auto isWhole = [](double value) { return std::abs(value - std::round(value)) < 1e-6; };
    bool const isPixelOnPixel = std::abs(matrix.xx - 1) < 1e-6 && std::abs(matrix.yy - 1) < 1e-6
        && matrix.xy == 0 && matrix.yx == 0 && isWhole(matrix.x0) && isWhole(matrix.y0);
    cairo_pattern_set_filter(source, isPixelOnPixel ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
    if (alpha < 1)
        cairo_paint_with_alpha(context, alpha);
    else
        cairo_paint(context);
    cairo_restore(context);
}

}   // namespace phone::graphics
