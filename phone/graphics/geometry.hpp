// Plain points, sizes, rectangles and colours of the raster layer. Lengths are points unless a
// name says pixels; y grows downwards. Colours are straight (not premultiplied) sRGB, 0 to 1.
#pragma once

#include <algorithm>

namespace phone::graphics {

struct Point {
    double x { 0 };
    double y { 0 };
    friend bool operator==(Point const&, Point const&) = default;
};

struct Size {
    double width { 0 };
    double height { 0 };
    friend bool operator==(Size const&, Size const&) = default;
};

struct Rect {
    double x { 0 };
    double y { 0 };
    double width { 0 };
    double height { 0 };

    double midX() const { return x + width / 2; }
    double midY() const { return y + height / 2; }
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    Size size() const { return { width, height }; }

    // True for NaN as well: nothing can be drawn there.
    bool isEmpty() const { return !(width > 0 && height > 0); }

    // Smaller by dx at the left and the right, by dy at the top and the bottom; may come out empty.
    Rect inset(double dx, double dy) const { return { x + dx, y + dy, width - 2 * dx, height - 2 * dy }; }
    Rect offset(double dx, double dy) const { return { x + dx, y + dy, width, height }; }

    friend bool operator==(Rect const&, Rect const&) = default;
};

// The part common to both; empty (zero width or height) when they don't meet.
inline Rect intersection(Rect const& a, Rect const& b)
{
    double const left = std::max(a.x, b.x);
    double const top = std::max(a.y, b.y);
    double const right = std::min(a.maxX(), b.maxX());
    double const bottom = std::min(a.maxY(), b.maxY());
    return { left, top, std::max(0.0, right - left), std::max(0.0, bottom - top) };
}

struct Color {
    double red { 0 };
    double green { 0 };
    double blue { 0 };
    double alpha { 1 };

    // 0xRRGGBB, as design tables write it.
    static constexpr Color hex(unsigned rgb, double alpha = 1)
    {
        return { ((rgb >> 16) & 0xff) / 255.0, ((rgb >> 8) & 0xff) / 255.0, (rgb & 0xff) / 255.0, alpha };
    }
    static constexpr Color white(double level = 1, double alpha = 1)
    {
        return { level, level, level, alpha };
    }
    static constexpr Color black(double alpha = 1) { return { 0, 0, 0, alpha }; }

    constexpr Color withAlpha(double value) const { return { red, green, blue, value }; }

    friend bool operator==(Color const&, Color const&) = default;
};

// a at 0, b at 1; components and alpha run straight between them.
inline Color mix(Color const& a, Color const& b, double fraction)
{
    auto between = [fraction](double from, double to) { return from + (to - from) * fraction; };
    return { between(a.red, b.red), between(a.green, b.green), between(a.blue, b.blue),
        between(a.alpha, b.alpha) };
}

}   // namespace phone::graphics
