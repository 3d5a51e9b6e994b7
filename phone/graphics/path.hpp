// Shapes added to a Cairo context's current path, in its own units.
#pragma once

#include "phone/graphics/geometry.hpp"

#include <cairo.h>

namespace phone::graphics {

void addRect(cairo_t*, Rect const&);
void addCircle(cairo_t*, Point center, double radius);
void addEllipse(cairo_t*, Rect const&);

struct CornerRadii {
    double topLeft { 0 };
    double topRight { 0 };
    double bottomRight { 0 };
    double bottomLeft { 0 };
};

// Circular corners, as layer.cornerRadius draws them. Radii are cut to half the shorter side.
void addRoundedRect(cairo_t*, Rect const&, double radius);
void addRoundedRect(cairo_t*, Rect const&, CornerRadii const&);

// Continuous corners, as icons, cards and the display have: curvature eases in along the side, so
// that a corner takes 1.6 times its radius where there is room; with less room it nears a circle.
void addContinuousRect(cairo_t*, Rect const&, double radius);

// Pill: ends are half circles.
void addCapsule(cairo_t*, Rect const&);

void setColor(cairo_t*, Color const&);
void fill(cairo_t*, Color const&);                   // and clears the path
void stroke(cairo_t*, Color const&, double width);   // and clears the path

}   // namespace phone::graphics
