// What the stand-in shows over the picture that SpringBoard draws: that the screen has dimmed, and that the
// motor taps. No window, since on a phone neither is one. Main thread.
#pragma once

#include "phone/graphics/geometry.hpp"

#include <cairo.h>

namespace phone {

// Over the finished picture of the screen, in points; by screenState().
void drawScreenMarks(cairo_t*, graphics::Size screen);

}
