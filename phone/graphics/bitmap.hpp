// Bitmap: shared premultiplied ARGB32 pixels with a scale, over a Cairo image surface. The one kind
// of picture in the phone: screens, photos, icons and caches. Main thread only.
#pragma once

#include "phone/graphics/geometry.hpp"

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace phone::graphics {

// Larger pictures are refused, whether made or decoded: a damaged or malicious file may claim any
// size in a few bytes. 16384 a side and 80 megapixels (320 MB) leave room for every phone's photos.
inline constexpr int kMaxPixelSide = 16384;
inline constexpr std::int64_t kMaxPixelCount = 80'000'000;

// False for zero, negative and absurd sizes.
bool isAcceptablePixelSize(std::int64_t width, std::int64_t height);

struct ContextDeleter {
    void operator()(cairo_t*) const;
};
using Context = std::unique_ptr<cairo_t, ContextDeleter>;

// Copies share the pixels, as handles do; copy() makes new ones. A default-made Bitmap has no
// pixels, tests false, and answers zero to everything: that is how "none" is returned here.
class Bitmap {
public:
    Bitmap() = default;

    // Transparent black, round(points * scale) pixels and at least one each way. None if a side
    // isn't positive, isn't a number, or is refused by isAcceptablePixelSize().
    static Bitmap withPoints(Size points, double scale);
    static Bitmap withPixels(int width, int height, double scale = 1);

    // A view of memory that somebody else owns and keeps alive (a window's back buffer).
    static Bitmap overMemory(
        std::uint8_t* argb32, int width, int height, std::ptrdiff_t stride, double scale);

    explicit operator bool() const { return m_surface != nullptr; }
    friend bool operator==(Bitmap const& a, Bitmap const& b)
    {
        return a.m_surface == b.m_surface && a.m_scale == b.m_scale;
    }

    int pixelWidth() const;
    int pixelHeight() const;
    double scale() const { return m_scale; }                                // pixels per point
    Size size() const;                                                      // points: pixels / scale
    Rect bounds() const { return { 0, 0, size().width, size().height }; }   // points

    // The same pixels seen at another scale.
    Bitmap withScale(double scale) const;
    Bitmap copy() const;

    // Lent. Whoever writes pixels past Cairo calls markDirty() afterwards; pixels() flushes first.
    cairo_surface_t* surface() const { return m_surface.get(); }
    std::uint8_t* pixels() const;    // row 0 is the top; native-endian 0xAARRGGBB words
    std::ptrdiff_t stride() const;   // bytes from row to row
    std::uint32_t const* row(int y) const;
    std::uint32_t* row(int y);
    void markDirty() const;

    // A new drawing context in which one unit is one point, origin top left. Null for none.
    Context newContext() const;

    bool isOpaque() const;   // looks at every pixel's alpha
    void clear() const;      // to transparent black

private:
    std::shared_ptr<cairo_surface_t> m_surface;
    double m_scale { 1 };
};

// Pixel rectangle grown to whole pixels, then cut to the bitmap, as CGImageCreateWithImageInRect
// does. A copy at the same scale; none when nothing is left, or when the rectangle isn't a number.
Bitmap cropped(Bitmap const&, Rect pixels);

// Template image: the alpha of the bitmap, in one colour.
Bitmap tinted(Bitmap const&, Color);

// Drawn anew to fill `points` at `scale`, with a filter that averages when it shrinks.
Bitmap resized(Bitmap const&, Size points, double scale);

// Mirrored left to right, for pictures that flip with the writing direction.
Bitmap mirrored(Bitmap const&);

// Fills rect (in the context's units) with the whole bitmap; edges don't bleed. None: nothing drawn.
void drawBitmap(cairo_t*, Bitmap const&, Rect rect, double alpha = 1);

}   // namespace phone::graphics
