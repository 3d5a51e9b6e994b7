#include "phone/screen/shadow.hpp"

#include "phone/graphics/bitmap.hpp"
#include "phone/graphics/blur.hpp"
#include "phone/graphics/path.hpp"

#include <algorithm>

namespace phone {

namespace {

// A shadow's radius is the Gaussian's sigma; after three of them nothing is left.
double reachOf(LayerProperties const& layer) { return 3 * std::max(0.0, layer.shadowRadius); }

}

graphics::Rect shadowExtents(graphics::Rect const& bounds, LayerProperties const& layer)
{
    double const reach = reachOf(layer);
    return bounds.inset(-reach, -reach).offset(layer.shadowOffset.width, layer.shadowOffset.height);
}

void drawShadowOfPath(
    cairo_t* cairo, graphics::Rect const& bounds, LayerProperties const& layer, double scale)
{
    cairo_path_t* const outline = cairo_copy_path(cairo);
    cairo_new_path(cairo);
    double const reach = reachOf(layer);
    graphics::Rect const around = bounds.inset(-reach, -reach);
    if (auto const shape = graphics::Bitmap::withPoints(around.size(), scale)) {
        {
            auto const context = shape.newContext();
            cairo_translate(context.get(), -around.x, -around.y);
            cairo_append_path(context.get(), outline);
            graphics::fill(context.get(), layer.shadowColor);
        }
        auto const shadow = graphics::blurred(shape, std::max(0.0, layer.shadowRadius) * scale);
        graphics::drawBitmap(cairo, shadow, shadowExtents(bounds, layer), std::min(layer.shadowOpacity, 1.0));
    }
    cairo_path_destroy(outline);
}

}
