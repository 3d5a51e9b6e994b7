// DrawContext: what a view's content is drawn into. Lent for one call of phone_drawContent:.
#pragma once

#include "phone/graphics/text.hpp"

#include <cairo.h>

namespace phone {

struct DrawContext {
    cairo_t* cairo { nullptr };   // one unit is one point, in the view's bounds space
    double scale { 1 };           // pixels per point of the picture that is drawn
    graphics::WritingDirection direction { graphics::WritingDirection::leftToRight };
    bool dark { false };   // appearance
};

}
