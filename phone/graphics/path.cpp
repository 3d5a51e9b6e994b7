#include "phone/graphics/path.hpp"

#include <cmath>
#include <numbers>

namespace phone::graphics {

namespace {

using std::numbers::pi;

// How much longer than its radius a continuous corner is on each side, given room.
constexpr double kCornerSmoothing = 0.6;

double halfShorterSide(Rect const& rect) { return std::max(0.0, std::min(rect.width, rect.height) / 2); }

// Lengths of one continuous corner. A circular arc in its middle is flanked by two Bezier curves
// that take the curvature from zero at the straight side up to the arc's own.
struct ContinuousCorner {
    double reach { 0 };   // from the rectangle's corner to where the side stops being straight
    double radius { 0 };
    double arcAngle { 0 };   // radians of the true arc in the middle
    double a { 0 };          // Bezier: along the side to the first control point,
    double b { 0 };          // on to the second,
    double c { 0 };          // on to the point below which the arc begins,
    double d { 0 };          // and that far inwards.
};

ContinuousCorner continuousCorner(double radius, double room)
{
    ContinuousCorner corner;
    corner.radius = std::min(radius, room);
    // With less room than 1.6 radii the curve keeps its radius and gives up smoothness instead.
    double const smoothing = corner.radius > 0 ? std::min(kCornerSmoothing, room / corner.radius - 1) : 0;
    corner.reach = (1 + smoothing) * corner.radius;
    corner.arcAngle = pi / 2 * (1 - smoothing);
    double const flank = (pi / 2 - corner.arcAngle) / 2;   // turned by each Bezier
    double const arcSide = std::sin(corner.arcAngle / 2) * corner.radius * std::numbers::sqrt2;
    double const handle = corner.radius * std::tan(flank / 2);
    corner.c = handle * std::cos(flank);
    corner.d = handle * std::sin(flank);
    corner.b = (corner.reach - arcSide - corner.c - corner.d) / 3;
    corner.a = 2 * corner.b;
    return corner;
}

// In a frame where the rectangle's corner is the origin, the side arrives along +x (from the
// left, y = 0) and leaves along +y: the top right corner. Other corners are quarter turns of it.
void addContinuousCorner(cairo_t* context, ContinuousCorner const& k, Point corner, int quarterTurns)
{
    cairo_save(context);
    cairo_translate(context, corner.x, corner.y);
    cairo_rotate(context, quarterTurns * pi / 2);
    double const reach = k.reach;
    double x = -reach;
    cairo_line_to(context, x, 0);
    cairo_curve_to(context, x + k.a, 0, x + k.a + k.b, 0, x + k.a + k.b + k.c, k.d);
    double const start = -pi / 4 - k.arcAngle / 2;
    cairo_arc(context, -k.radius, k.radius, k.radius, start, start + k.arcAngle);
    cairo_curve_to(context, 0, reach - k.a - k.b, 0, reach - k.a, 0, reach);
    cairo_restore(context);
}

}   // namespace

void addRect(cairo_t* context, Rect const& rect)
{
    cairo_rectangle(context, rect.x, rect.y, rect.width, rect.height);
}

void addCircle(cairo_t* context, Point center, double radius)
{
    cairo_new_sub_path(context);
    cairo_arc(context, center.x, center.y, std::max(0.0, radius), 0, 2 * pi);
    cairo_close_path(context);
}

void addEllipse(cairo_t* context, Rect const& rect)
{
    if (rect.isEmpty())
        return;
    cairo_save(context);
    cairo_translate(context, rect.midX(), rect.midY());
    cairo_scale(context, rect.width / 2, rect.height / 2);
    addCircle(context, {}, 1);
    cairo_restore(context);
}

void addRoundedRect(cairo_t* context, Rect const& rect, double radius)
{
    addRoundedRect(context, rect, { radius, radius, radius, radius });
}

void addRoundedRect(cairo_t* context, Rect const& rect, CornerRadii const& radii)
{
    double const limit = halfShorterSide(rect);
    auto bounded = [limit](double radius) { return radius > 0 ? std::min(radius, limit) : 0.0; };
    double const topLeft = bounded(radii.topLeft);
    double const topRight = bounded(radii.topRight);
    double const bottomRight = bounded(radii.bottomRight);
    double const bottomLeft = bounded(radii.bottomLeft);
    if (topLeft + topRight + bottomRight + bottomLeft <= 0) {
        addRect(context, rect);
        return;
    }
    cairo_new_sub_path(context);
    cairo_arc(context, rect.maxX() - topRight, rect.y + topRight, topRight, -pi / 2, 0);
    cairo_arc(context, rect.maxX() - bottomRight, rect.maxY() - bottomRight, bottomRight, 0, pi / 2);
    cairo_arc(context, rect.x + bottomLeft, rect.maxY() - bottomLeft, bottomLeft, pi / 2, pi);
    cairo_arc(context, rect.x + topLeft, rect.y + topLeft, topLeft, pi, pi * 3 / 2);
    cairo_close_path(context);
}

void addContinuousRect(cairo_t* context, Rect const& rect, double radius)
{
    double const room = halfShorterSide(rect);
    if (!(radius > 0) || room <= 0) {
        addRect(context, rect);
        return;
    }
    ContinuousCorner const corner = continuousCorner(radius, room);
    cairo_new_sub_path(context);
    addContinuousCorner(context, corner, { rect.maxX(), rect.y }, 0);
    addContinuousCorner(context, corner, { rect.maxX(), rect.maxY() }, 1);
    addContinuousCorner(context, corner, { rect.x, rect.maxY() }, 2);
    addContinuousCorner(context, corner, { rect.x, rect.y }, 3);
    cairo_close_path(context);
}

void addCapsule(cairo_t* context, Rect const& rect) { addRoundedRect(context, rect, halfShorterSide(rect)); }

void setColor(cairo_t* context, Color const& color)
{
    cairo_set_source_rgba(context, color.red, color.green, color.blue, color.alpha);
}

void fill(cairo_t* context, Color const& color)
{
    setColor(context, color);
    cairo_fill(context);
}

void stroke(cairo_t* context, Color const& color, double width)
{
    setColor(context, color);
    cairo_set_line_width(context, width);
    cairo_stroke(context);
}

}   // namespace phone::graphics
