#include "phone/screen/device_frame.hpp"

#include "phone/graphics/path.hpp"

#include <cmath>
#include <numbers>

namespace phone {

namespace {

using graphics::Color;
using graphics::Rect;
using graphics::Size;

// Chosen by us, after photographs: black glass around the display, then a metal band.
constexpr double kGlass = 9;
constexpr double kBand = 4;
constexpr double kChin = 74;   // above and below the screen on phones with a home button
constexpr double kHomeButton = 46;
constexpr double kSquareBodyRadius = 48;

// Measured radii, by the screen's size.
struct DisplayRow {
    double width;
    double height;
    double cornerRadius;
    bool hasIsland;
};
constexpr DisplayRow kDisplays[] {
    { 375, 812, 39, false },
    { 414, 896, 41.5, false },
    { 390, 844, 47.33, false },
    { 428, 926, 53.33, false },
    { 393, 852, 55, true },
    { 430, 932, 55, true },
};

constexpr double kOtherDisplayRadius = 44;

DisplayRow displayOf(Size portrait)
{
    for (DisplayRow const& row : kDisplays) {
        if (row.width == portrait.width && row.height == portrait.height)
            return row;
    }
    bool const isTall = portrait.height > 2 * portrait.width;
    return { portrait.width, portrait.height, isTall ? kOtherDisplayRadius : 0, false };
}

}

double displayCornerRadius(Size portrait) { return displayOf(portrait).cornerRadius; }

DeviceFrame::DeviceFrame(Size portrait, int orientation)
    : m_portrait(portrait)
    , m_orientation(orientation)
{
    DisplayRow const display = displayOf(portrait);
    m_cornerRadius = display.cornerRadius;
    bool const hasHomeButton = !(m_cornerRadius > 0);
    if (!hasHomeButton)
        m_cutOut = display.hasIsland ? CutOut::island : CutOut::notch;
    double const side = kGlass + kBand;
    double const end = hasHomeButton ? kChin : side;
    Size const screen = isLandscape() ? Size { portrait.height, portrait.width } : portrait;
    double const x = isLandscape() ? end : side;
    double const y = isLandscape() ? side : end;
    m_size = { screen.width + 2 * x, screen.height + 2 * y };
    m_screen = { x, y, screen.width, screen.height };
}

void DeviceFrame::drawBody(cairo_t* cairo) const
{
    double const radius = m_cornerRadius > 0 ? m_cornerRadius + kGlass + kBand : kSquareBodyRadius;
    Rect const body { 0, 0, m_size.width, m_size.height };
    graphics::addContinuousRect(cairo, body, radius);
    cairo_pattern_t* const metal = cairo_pattern_create_linear(0, 0, m_size.width, m_size.height);
    for (auto const& [at, level] : { std::pair { 0.0, 0.55 }, { 0.3, 0.3 }, { 0.7, 0.24 }, { 1.0, 0.45 } })
        cairo_pattern_add_color_stop_rgb(metal, at, level, level, level * 1.04);
    cairo_set_source(cairo, metal);
    cairo_fill(cairo);
    cairo_pattern_destroy(metal);
    graphics::addContinuousRect(cairo, body.inset(kBand, kBand), radius - kBand);
    graphics::fill(cairo, Color::hex(0x0b0b0d));
    if (m_cornerRadius > 0)
        return;
    graphics::Point const button = isLandscape()
        ? graphics::Point { m_orientation == 3 ? m_size.width - kChin / 2 : kChin / 2, m_size.height / 2 }
        : graphics::Point { m_size.width / 2, m_orientation == 2 ? kChin / 2 : m_size.height - kChin / 2 };
    graphics::addCircle(cairo, button, kHomeButton / 2);
    graphics::stroke(cairo, Color::white(0.3), 2);
}

// Where the camera looks out, in the screen held upright; turned as the phone is turned.
void DeviceFrame::addCutOut(cairo_t* cairo) const
{
    cairo_save(cairo);
    cairo_translate(cairo, m_screen.midX(), m_screen.midY());
    // Landscape 3 has the home indicator's end at the right, so the phone's top is at the left.
    constexpr double kQuarter = std::numbers::pi / 2;
    double const turns[] { 0, 0, 2 * kQuarter, -kQuarter, kQuarter };
    cairo_rotate(cairo, turns[m_orientation >= 1 && m_orientation <= 4 ? m_orientation : 1]);
    cairo_translate(cairo, -m_portrait.width / 2, -m_portrait.height / 2);
    if (m_cutOut == CutOut::island) {
        graphics::addCapsule(cairo, { m_portrait.width / 2 - 63, 11, 126, 37 });
    } else {
        // Wide and 30 high up to the 11 Pro, narrower and about as high after it.
        double const width = m_portrait.width == 375 || m_portrait.width == 414 ? 209 : 162;
        Rect const notch { m_portrait.width / 2 - width / 2, -20, width, 52 };
        graphics::addRoundedRect(cairo, notch, 20);
    }
    cairo_restore(cairo);
}

void DeviceFrame::drawScreen(cairo_t* cairo, graphics::Bitmap const& screen) const
{
    cairo_save(cairo);
    if (m_cornerRadius > 0)
        graphics::addContinuousRect(cairo, m_screen, m_cornerRadius);
    else
        graphics::addRect(cairo, m_screen);
    cairo_clip(cairo);
    graphics::drawBitmap(cairo, screen, m_screen);
    if (m_cutOut != CutOut::none) {
        addCutOut(cairo);
        graphics::fill(cairo, Color::black());
    }
    cairo_restore(cairo);
}

graphics::Bitmap DeviceFrame::picture(graphics::Bitmap const& screen) const
{
    if (!screen)
        return {};
    auto const bitmap = graphics::Bitmap::withPoints(m_size, screen.scale());
    if (auto const context = bitmap.newContext()) {
        drawBody(context.get());
        drawScreen(context.get(), screen);
    }
    return bitmap;
}

}
