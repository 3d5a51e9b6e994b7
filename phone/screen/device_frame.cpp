#include "phone/screen/device_frame.hpp"

#include "phone/graphics/path.hpp"

#include <cmath>
#include <numbers>

namespace phone {

namespace {

using graphics::Color;
using CutOut = graphics::Display::CutOut;
using graphics::Rect;
using graphics::Size;

// Chosen by us, after photographs: black glass around the display, then a metal band.
constexpr double kGlass = 9;
constexpr double kBand = 4;
constexpr double kChin = 74;   // above and below the screen on phones with a home button
constexpr double kHomeButton = 46;
constexpr double kSquareBodyRadius = 48;

}

DeviceFrame::DeviceFrame(Size portrait, int orientation)
    : m_portrait(portrait)
    , m_display(graphics::Display::of(portrait))
    , m_orientation(orientation)
{
    bool const hasHomeButton = m_display.cutOut == CutOut::none;
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
    double const radius =
        m_display.cornerRadius > 0 ? m_display.cornerRadius + kGlass + kBand : kSquareBodyRadius;
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
    if (m_display.cornerRadius > 0)
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
    double const x = (m_portrait.width - m_display.cutOutWidth) / 2;
    if (m_display.cutOut == CutOut::island)
        graphics::addCapsule(cairo, { x, 11, m_display.cutOutWidth, 37 });
    else
        graphics::addRoundedRect(cairo, { x, -20, m_display.cutOutWidth, 52 }, 20);   // about 30 high
    cairo_restore(cairo);
}

void DeviceFrame::drawScreen(cairo_t* cairo, graphics::Bitmap const& screen) const
{
    cairo_save(cairo);
    if (m_display.cornerRadius > 0)
        graphics::addContinuousRect(cairo, m_screen, m_display.cornerRadius);
    else
        graphics::addRect(cairo, m_screen);
    cairo_clip(cairo);
    graphics::drawBitmap(cairo, screen, m_screen);
    if (m_display.cutOut != CutOut::none) {
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
