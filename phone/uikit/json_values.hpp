// Values as the trace and the view trees write them.
#pragma once

#include "phone/foundation/json_objects.hpp"
#include "phone/graphics/geometry.hpp"
#include "platform/core_graphics.hpp"

#include <nlohmann/json.hpp>

namespace phone {

using Json = nlohmann::ordered_json;

inline Json toJson(CGPoint p) { return { { "point", { p.x, p.y } } }; }
inline Json toJson(CGSize s) { return { { "size", { s.width, s.height } } }; }
inline Json toJson(CGRect r)
{
    return { { "rect", { r.origin.x, r.origin.y, r.size.width, r.size.height } } };
}
inline Json toJson(UIEdgeInsets i) { return { { "insets", { i.top, i.left, i.bottom, i.right } } }; }
inline Json toJson(CGAffineTransform t) { return { { "transform", { t.a, t.b, t.c, t.d, t.tx, t.ty } } }; }
inline Json toJson(graphics::Color c) { return { { "color", { c.red, c.green, c.blue, c.alpha } } }; }

}
