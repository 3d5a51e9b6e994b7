#include "phone/uikit/geometry.hpp"

#include "phone/kernel/services.hpp"

namespace phone {

CGRect intersection(CGRect a, CGRect b)
{
    double const left = std::max(minX(a), minX(b));
    double const top = std::max(minY(a), minY(b));
    double const right = std::min(maxX(a), maxX(b));
    double const bottom = std::min(maxY(a), maxY(b));
    if (right <= left || bottom <= top)
        return {};
    return { { left, top }, { right - left, bottom - top } };
}

CGAffineTransform rotation(double radians)
{
    double const sine = std::sin(radians);
    double const cosine = std::cos(radians);
    return { cosine, sine, -sine, cosine, 0, 0 };
}

CGAffineTransform inverted(CGAffineTransform t)
{
    double const determinant = t.a * t.d - t.b * t.c;
    if (determinant == 0 || !std::isfinite(determinant))
        return t;
    CGAffineTransform const inverse { t.d / determinant, -t.b / determinant, -t.c / determinant,
        t.a / determinant, 0, 0 };
    return { inverse.a, inverse.b, inverse.c, inverse.d, -(t.tx * inverse.a + t.ty * inverse.c),
        -(t.tx * inverse.b + t.ty * inverse.d) };
}

CGRect apply(CGAffineTransform t, CGRect r)
{
    CGPoint const corners[] = { apply(t, CGPoint { minX(r), minY(r) }),
        apply(t, CGPoint { maxX(r), minY(r) }), apply(t, CGPoint { minX(r), maxY(r) }),
        apply(t, CGPoint { maxX(r), maxY(r) }) };
    double left = corners[0].x, top = corners[0].y, right = left, bottom = top;
    for (CGPoint const corner : corners) {
        left = std::min(left, corner.x);
        top = std::min(top, corner.y);
        right = std::max(right, corner.x);
        bottom = std::max(bottom, corner.y);
    }
    return { { left, top }, { right - left, bottom - top } };
}

bool isFinite(CGRect r)
{
    return std::isfinite(r.origin.x) && std::isfinite(r.origin.y) && std::isfinite(r.size.width)
        && std::isfinite(r.size.height);
}

double ceilToPixel(double points)
{
    double const scale = bootOptions().scale;
    // What is a whole pixel but for rounding errors stays one.
    return std::ceil(points * scale - 1e-6) / scale;
}

double roundToPixel(double points)
{
    double const scale = bootOptions().scale;
    return std::round(points * scale) / scale;
}

}
