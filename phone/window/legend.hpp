// The legend beside or under the phone: which key does what. Main thread.
#pragma once

#include "phone/graphics/geometry.hpp"

#include <cairo.h>

#include <string>
#include <vector>

namespace phone {

struct LegendRow {
    std::string key;   // as on the keyboard
    std::string text;
};

// Under its title the rows go down in columns, filled one after the other.
struct Legend {
    std::vector<LegendRow> rows;
    std::size_t columns { 1 };

    graphics::Size size() const;   // points
    void draw(cairo_t* cairo, graphics::Point origin) const;
};

}
