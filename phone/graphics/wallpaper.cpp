#include "phone/graphics/wallpaper.hpp"

#include "phone/graphics/path.hpp"

#include <array>
#include <cmath>
#include <span>

namespace phone::graphics {

namespace {

// All positions are parts of the picture's width and height; radii are parts of its height.

struct Stop {
    double offset;
    unsigned rgb;
};

struct Glow {
    Point center;
    double radius;
    unsigned rgb;
    double alpha;   // at the centre, falling to nothing at the radius
};

struct Disc {
    Point center;
    double radius;
    unsigned rgb;
};

// A ridge as heights at equal steps from the left edge to the right, joined by smooth curves.
struct Hill {
    std::array<double, 6> heights;
    unsigned top;      // colour at the ridge
    unsigned bottom;   // and at the picture's lower edge
};

struct Scene {
    std::array<Stop, 6> sky;
    std::array<Glow, 3> glows;
    Disc disc;
    std::array<Hill, 3> hills;
    int stars;
};

constexpr Scene kEvening {
    .sky = { { { 0, 0x1c1465 }, { 0.2, 0x3a1e77 }, { 0.3, 0x722f8a }, { 0.44, 0xb04592 }, { 0.58, 0xd54e82 },
        { 0.72, 0xf27a63 } } },
    .glows = { { { { 0.86, 0.2 }, 0.36, 0x5aa6f0, 0.78 }, { { 0.84, 0.43 }, 0.2, 0xffd9a0, 0.5 },
        { { 0.2, 0.62 }, 0.3, 0xff6f8e, 0.3 } } },
    .disc = { { 0.84, 0.43 }, 0.066, 0xfdeab6 },
    .hills = { { { { 0.695, 0.655, 0.672, 0.683, 0.642, 0.618 }, 0x6d3174, 0x5d2968 },
        { { 0.712, 0.775, 0.800, 0.762, 0.772, 0.735 }, 0x45215f, 0x371a55 },
        { { 0.925, 0.880, 0.898, 0.905, 0.855, 0.812 }, 0x29124a, 0x1d0b38 } } },
    .stars = 0,
};

constexpr Scene kNight {
    .sky = { { { 0, 0x060616 }, { 0.2, 0x0c0a2a }, { 0.34, 0x17103f }, { 0.48, 0x2b1650 }, { 0.6, 0x43204f },
        { 0.72, 0x5c2c4c } } },
    .glows = { { { { 0.86, 0.2 }, 0.36, 0x1d4a86, 0.6 }, { { 0.84, 0.43 }, 0.17, 0x9fb0e8, 0.3 },
        { { 0.2, 0.62 }, 0.3, 0x7a2f5c, 0.35 } } },
    .disc = { { 0.84, 0.43 }, 0.052, 0xe6e9f6 },
    .hills = { { { { 0.695, 0.655, 0.672, 0.683, 0.642, 0.618 }, 0x2a1538, 0x1f0f2c },
        { { 0.712, 0.775, 0.800, 0.762, 0.772, 0.735 }, 0x190d29, 0x120920 },
        { { 0.925, 0.880, 0.898, 0.905, 0.855, 0.812 }, 0x0d0718, 0x080410 } } },
    .stars = 70,
};

struct PatternDeleter {
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using Pattern = std::unique_ptr<cairo_pattern_t, PatternDeleter>;

void addStop(Pattern const& pattern, double offset, Color const& color)
{
    cairo_pattern_add_color_stop_rgba(pattern.get(), offset, color.red, color.green, color.blue, color.alpha);
}

void paintSky(cairo_t* context, std::span<Stop const> stops, Size size)
{
    // Leaning a little to the left, as light from the disc at the right would have it.
    Pattern const gradient { cairo_pattern_create_linear(
        size.width * 0.36, 0, size.width * 0.64, size.height) };
    for (Stop const& stop : stops)
        addStop(gradient, stop.offset, Color::hex(stop.rgb));
    cairo_set_source(context, gradient.get());
    cairo_paint(context);
}

void paintGlow(cairo_t* context, Glow const& glow, Size size)
{
    double const x = glow.center.x * size.width;
    double const y = glow.center.y * size.height;
    double const radius = glow.radius * size.height;
    Pattern const gradient { cairo_pattern_create_radial(x, y, 0, x, y, radius) };
    // Falls off as (1 + cos) / 2, without the visible rim that a straight ramp leaves.
    constexpr int kSteps = 8;
    for (int i = 0; i <= kSteps; ++i) {
        double const distance = double(i) / kSteps;
        double const strength = (1 + std::cos(distance * 3.14159265358979)) / 2;
        addStop(gradient, distance, Color::hex(glow.rgb, glow.alpha * strength));
    }
    cairo_set_source(context, gradient.get());
    addRect(context, { x - radius, y - radius, 2 * radius, 2 * radius });
    cairo_fill(context);
}

void paintStars(cairo_t* context, int count, Size size)
{
    // A fixed sequence (numbers of Lehmer's kind), so that every night is the same.
    std::uint64_t state = 20071;
    auto next = [&state] {
        state = state * 48271 % 2147483647;
        return double(state) / 2147483647;
    };
    for (int i = 0; i < count; ++i) {
        Point const place { next() * size.width, std::pow(next(), 1.4) * 0.55 * size.height };
        double const radius = (0.35 + 0.75 * next() * next()) * size.height / 844;
        double const alpha = 0.25 + 0.55 * next();
        addCircle(context, place, radius);
        fill(context, Color::white(1, alpha));
    }
}

void paintHill(cairo_t* context, Hill const& hill, Size size)
{
    std::size_t const last = hill.heights.size() - 1;
    double const step = size.width / double(last);
    auto height = [&](std::size_t i) { return hill.heights[i] * size.height; };
    // Tangents as in a Catmull-Rom spline, flat at both ends.
    auto slope = [&](std::size_t i) {
        return i == 0 || i == last ? 0.0 : (height(i + 1) - height(i - 1)) / 2;
    };
    cairo_move_to(context, 0, height(0));
    for (std::size_t i = 0; i < last; ++i) {
        double const x = double(i) * step;
        cairo_curve_to(context, x + step / 3, height(i) + slope(i) / 3, x + step * 2 / 3,
            height(i + 1) - slope(i + 1) / 3, x + step, height(i + 1));
    }
    cairo_line_to(context, size.width, size.height);
    cairo_line_to(context, 0, size.height);
    cairo_close_path(context);
    double const ridge = *std::min_element(hill.heights.begin(), hill.heights.end());
    Pattern const gradient { cairo_pattern_create_linear(0, ridge * size.height, 0, size.height) };
    addStop(gradient, 0, Color::hex(hill.top));
    addStop(gradient, 1, Color::hex(hill.bottom));
    cairo_set_source(context, gradient.get());
    cairo_fill(context);
}

struct CachedWallpaper {
    Size points;
    double scale { 0 };
    Bitmap bitmap;
};

// By variant; written by wallpaper() alone.
std::array<CachedWallpaper, 2> g_wallpapers;

}   // namespace

void paintWallpaper(cairo_t* context, Rect const& rect, WallpaperVariant variant)
{
    if (rect.isEmpty())
        return;
    Scene const& scene = variant == WallpaperVariant::dark ? kNight : kEvening;
    Size const size = rect.size();
    cairo_save(context);
    cairo_translate(context, rect.x, rect.y);
    addRect(context, { 0, 0, size.width, size.height });
    cairo_clip(context);
    paintSky(context, scene.sky, size);
    paintStars(context, scene.stars, size);
    for (Glow const& glow : scene.glows)
        paintGlow(context, glow, size);
    addCircle(context, { scene.disc.center.x * size.width, scene.disc.center.y * size.height },
        scene.disc.radius * size.height);
    fill(context, Color::hex(scene.disc.rgb));
    for (Hill const& hill : scene.hills)
        paintHill(context, hill, size);
    cairo_restore(context);
}

Bitmap wallpaper(Size points, double scale, WallpaperVariant variant)
{
    CachedWallpaper& cached = g_wallpapers[variant == WallpaperVariant::dark ? 1 : 0];
    if (!cached.bitmap || cached.points != points || cached.scale != scale) {
        Bitmap const bitmap = Bitmap::withPoints(points, scale);
        if (!bitmap)
            return {};
        paintWallpaper(bitmap.newContext().get(), bitmap.bounds(), variant);
        cached = { points, scale, bitmap };
    }
    return cached.bitmap;
}

}   // namespace phone::graphics
