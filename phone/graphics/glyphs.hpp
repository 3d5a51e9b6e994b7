// The phone's own small signs as vector shapes: status bar, lock screen, media controls.
#pragma once

#include "phone/graphics/geometry.hpp"

#include <cairo.h>

namespace phone::graphics {

enum class Glyph {
    torch,
    camera,
    padlockClosed,
    padlockOpen,
    play,
    pause,
    nextTrack,
    previousTrack,
    bell,
    deleteKey,   // keyboard's: an arrow to the left with a cross
    chevronLeft,
    chevronRight,
    checkmark,
    cross,
    plus,
    person,
    magnifier,
    info,
};

// Centred in rect at the largest size that keeps its proportions.
void drawGlyph(cairo_t*, Glyph, Rect const&, Color const&);

// Width over height of the glyph's own box.
double glyphAspect(Glyph);

// Status bar. Bars: 0 to 4 lit, the rest dimmed. Wifi: 0 to 3 arcs lit. Battery: 0 to 1.
void drawSignalBars(cairo_t*, Rect const&, int bars, Color const&);
void drawWifi(cairo_t*, Rect const&, int arcs, Color const&);
void drawBattery(cairo_t*, Rect const&, double level, Color const&, bool charging = false);

}   // namespace phone::graphics
