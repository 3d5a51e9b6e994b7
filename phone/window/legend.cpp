#include "phone/window/legend.hpp"

#include "phone/graphics/path.hpp"
#include "phone/graphics/text.hpp"

namespace phone {

namespace {

namespace FontWeight = graphics::FontWeight;

constexpr double kWidth = 216;
constexpr double kRowHeight = 30;
constexpr double kTitleHeight = 44;
constexpr double kKeyHeight = 22;
constexpr double kKeyColumn = 66;

}

graphics::Size legendSize(std::vector<LegendRow> const& rows)
{
    return { kWidth, kTitleHeight + static_cast<double>(rows.size()) * kRowHeight };
}

void drawLegend(cairo_t* cairo, graphics::Point origin, std::vector<LegendRow> const& rows)
{
    using graphics::Color;
    graphics::TextStyle title;
    title.font = graphics::systemFont(20, FontWeight::kSemibold);
    graphics::drawText(cairo, "Corvel", title, { origin.x, origin.y, kWidth, 26 }, Color::white(0.95));

    graphics::TextStyle keyStyle;
    keyStyle.font = graphics::systemFont(12, FontWeight::kMedium);
    keyStyle.alignment = graphics::TextAlignment::center;
    graphics::TextStyle textStyle;
    textStyle.font = graphics::systemFont(13);
    textStyle.alignment = graphics::TextAlignment::left;
    double y = origin.y + kTitleHeight;
    for (LegendRow const& row : rows) {
        double const width = std::max(kKeyHeight, graphics::measureText(row.key, keyStyle).width + 14);
        graphics::Rect const key { origin.x, y, width, kKeyHeight };
        graphics::addRoundedRect(cairo, key, 5);
        graphics::fill(cairo, Color::white(1, 0.12));
        graphics::addRoundedRect(cairo, key.inset(0.5, 0.5), 4.5);
        graphics::stroke(cairo, Color::white(1, 0.22), 1);
        graphics::drawText(cairo, row.key, keyStyle, key, Color::white(0.95));
        graphics::drawText(cairo, row.text, textStyle,
            { origin.x + kKeyColumn, y, kWidth - kKeyColumn, kKeyHeight }, Color::white(0.75));
        y += kRowHeight;
    }
}

}
