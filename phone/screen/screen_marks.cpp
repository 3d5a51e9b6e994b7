#include "phone/screen/screen_marks.hpp"

#include "phone/graphics/path.hpp"
#include "phone/kernel/services.hpp"

namespace phone {

namespace {

using graphics::Color;

constexpr double kDimming = 0.6;   // of black

// Arcs at both edges, as one draws a thing that shakes. Points.
constexpr double kFirstRadius = 16;
constexpr double kPitch = 8;
constexpr int kArcs = 3;
constexpr double kHalfAngle = 0.6;   // radians

void drawHapticMark(cairo_t* cairo, graphics::Size screen)
{
    constexpr double kPi = 3.14159265358979;
    double const y = screen.height / 2;
    for (bool const isRight : { false, true }) {
        // The arcs' middle lies outside the screen, so that they come in from the edge.
        double const x = isRight ? screen.width + kFirstRadius * 0.5 : -kFirstRadius * 0.5;
        double const towards = isRight ? kPi : 0;
        for (int i = 0; i < kArcs; ++i) {
            double const radius = kFirstRadius + kPitch * i;
            cairo_new_sub_path(cairo);
            cairo_arc(cairo, x, y, radius, towards - kHalfAngle, towards + kHalfAngle);
            cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
            cairo_path_t* const arc = cairo_copy_path(cairo);
            graphics::stroke(cairo, Color::black(0.35), 4.5);
            cairo_append_path(cairo, arc);
            cairo_path_destroy(arc);
            graphics::stroke(cairo, Color::white(1, 0.95 - 0.25 * i), 2.5);
        }
    }
}

}

void drawScreenMarks(cairo_t* cairo, graphics::Size screen)
{
    ScreenState const& state = screenState();
    if (state.isDimmed) {
        graphics::addRect(cairo, { 0, 0, screen.width, screen.height });
        graphics::fill(cairo, Color::black(kDimming));
    }
    if (state.showsHapticMark)
        drawHapticMark(cairo, screen);
}

}
