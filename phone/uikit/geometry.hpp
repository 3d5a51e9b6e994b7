// Arithmetic on Core Graphics' rectangles and transforms. Points; y down.
#pragma once

#include "phone/graphics/geometry.hpp"
#include "platform/core_graphics.hpp"

#include <algorithm>
#include <cmath>

inline bool isIdentity(CGAffineTransform const& t) { return t == CGAffineTransform { 1, 0, 0, 1, 0, 0 }; }

namespace phone {

inline constexpr CGAffineTransform kIdentity { 1, 0, 0, 1, 0, 0 };

constexpr double minX(CGRect r) { return std::min(r.origin.x, r.origin.x + r.size.width); }
constexpr double minY(CGRect r) { return std::min(r.origin.y, r.origin.y + r.size.height); }
constexpr double maxX(CGRect r) { return std::max(r.origin.x, r.origin.x + r.size.width); }
constexpr double maxY(CGRect r) { return std::max(r.origin.y, r.origin.y + r.size.height); }
constexpr double midX(CGRect r) { return r.origin.x + r.size.width / 2; }
constexpr double midY(CGRect r) { return r.origin.y + r.size.height / 2; }
constexpr CGPoint center(CGRect r) { return { midX(r), midY(r) }; }
constexpr CGPoint operator+(CGPoint a, CGPoint b) { return { a.x + b.x, a.y + b.y }; }
constexpr CGPoint operator-(CGPoint a, CGPoint b) { return { a.x - b.x, a.y - b.y }; }

// Edges at the left and top belong to the rectangle, those at the right and bottom don't.
constexpr bool contains(CGRect r, CGPoint p)
{
    return p.x >= minX(r) && p.x < maxX(r) && p.y >= minY(r) && p.y < maxY(r);
}
constexpr CGRect inset(CGRect r, UIEdgeInsets by)
{
    return { { r.origin.x + by.left, r.origin.y + by.top },
        { r.size.width - by.left - by.right, r.size.height - by.top - by.bottom } };
}
constexpr CGRect standardized(CGRect r)
{
    // Not maximum less minimum: rounding would change a size that is in order.
    CGSize const size = r.size;
    return { { minX(r), minY(r) },
        { size.width < 0 ? -size.width : size.width, size.height < 0 ? -size.height : size.height } };
}
CGRect intersection(CGRect a, CGRect b);   // zero when they don't meet
constexpr bool intersects(CGRect a, CGRect b)
{
    return minX(a) < maxX(b) && minX(b) < maxX(a) && minY(a) < maxY(b) && minY(b) < maxY(a);
}

// First a, then b.
constexpr CGAffineTransform concatenated(CGAffineTransform a, CGAffineTransform b)
{
    return { a.a * b.a + a.b * b.c, a.a * b.b + a.b * b.d, a.c * b.a + a.d * b.c, a.c * b.b + a.d * b.d,
        a.tx * b.a + a.ty * b.c + b.tx, a.tx * b.b + a.ty * b.d + b.ty };
}
constexpr CGAffineTransform translation(double x, double y) { return { 1, 0, 0, 1, x, y }; }
constexpr CGAffineTransform scaling(double x, double y) { return { x, 0, 0, y, 0, 0 }; }
CGAffineTransform rotation(double radians);
// One that has no inverse is answered as it is, as Core Graphics does.
CGAffineTransform inverted(CGAffineTransform t);
constexpr CGPoint apply(CGAffineTransform t, CGPoint p)
{
    return { t.a * p.x + t.c * p.y + t.tx, t.b * p.x + t.d * p.y + t.ty };
}
CGRect apply(CGAffineTransform t, CGRect r);   // the bounding box

// NaN and infinity out: a frame computed from nothing must not travel through the tree.
bool isFinite(CGRect r);

constexpr graphics::Rect toGraphics(CGRect r)
{
    return { r.origin.x, r.origin.y, r.size.width, r.size.height };
}
constexpr graphics::Point toGraphics(CGPoint p) { return { p.x, p.y }; }
constexpr graphics::Size toGraphics(CGSize s) { return { s.width, s.height }; }
constexpr CGSize fromGraphics(graphics::Size s) { return { s.width, s.height }; }

// Up to the next whole pixel of the screen, as UIKit rounds what labels measure.
double ceilToPixel(double points);
double roundToPixel(double points);

}
