// DeviceFrame: the phone around its screen, for pictures and the window: body, bezel, round display corners,
// and the camera's cut-out. Any thread.
#pragma once

#include "phone/graphics/bitmap.hpp"
#include "phone/graphics/display.hpp"

namespace phone {

class DeviceFrame {
public:
    // `portrait`: the screen held upright, in points; orientation 1 to 4 as the interface's.
    DeviceFrame(graphics::Size portrait, int orientation);

    graphics::Size size() const { return m_size; }       // of the whole device, points
    graphics::Rect screen() const { return m_screen; }   // where the screen lies in it

    // Into a context whose unit is a point, the device's top left corner at the origin. The screen's picture is
    // as the orientation has it. drawBody and drawScreen in this order; the body alone doesn't change.
    void drawBody(cairo_t* cairo) const;
    void drawScreen(cairo_t* cairo, graphics::Bitmap const& screen) const;

    // The whole device on nothing, at the scale of the screen's picture. None for none.
    graphics::Bitmap picture(graphics::Bitmap const& screen) const;

private:
    void addCutOut(cairo_t* cairo) const;
    bool isLandscape() const { return m_orientation >= 3; }

    graphics::Size m_portrait;
    graphics::Display m_display;
    int m_orientation;
    graphics::Size m_size;
    graphics::Rect m_screen;
};

}
