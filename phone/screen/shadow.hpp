// Shadows of layers. Main thread.
#pragma once

#include "phone/graphics/geometry.hpp"
#include "phone/uikit/ca_layer.hpp"

#include <cairo.h>

namespace phone {

// Draws the shadow of the context's current path, which lies in `bounds`, and clears the path. `scale`: pixels
// per point. Deviation: the platform throws the shadow of all that the layer shows; ours is that of its
// background's outline, and is drawn for views with a background only.
void drawShadowOfPath(
    cairo_t* cairo, graphics::Rect const& bounds, LayerProperties const& layer, double scale);

// How far a shadow reaches, in the layer's bounds space.
graphics::Rect shadowExtents(graphics::Rect const& bounds, LayerProperties const& layer);

}
