// The legend beside the phone: which key does what. Main thread.
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

// Points that the legend takes.
graphics::Size legendSize(std::vector<LegendRow> const& rows);

void drawLegend(cairo_t* cairo, graphics::Point origin, std::vector<LegendRow> const& rows);

}
