#include "phone/window/legend.hpp"

#include "phone/graphics/path.hpp"
#include "phone/graphics/text.hpp"

#include <algorithm>

namespace phone {

namespace {

namespace FontWeight = graphics::FontWeight;

constexpr double kWidth = 216;
constexpr double kRowHeight = 30;
constexpr double kTitleHeight = 44;
constexpr double kKeyHeight = 22;
constexpr double kKeyColumn = 66;

}

graphics::Size Legend::size() const
{
    std::size_t const perColumn = (rows.size() + columns - 1) / columns;
    return { static_cast<double>(columns) * kWidth,
        kTitleHeight + static_cast<double>(perColumn) * kRowHeight };
}

void Legend::draw(cairo_t* cairo, graphics::Point origin) const
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
    std::size_t const perColumn = (rows.size() + columns - 1) / columns;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        double const x = origin.x + static_cast<double>(i / perColumn) * kWidth;
        double const y = origin.y + kTitleHeight + static_cast<double>(i % perColumn) * kRowHeight;
        double const width = std::max(kKeyHeight, graphics::measureText(rows[i].key, keyStyle).width + 14);
        graphics::Rect const key { x, y, width, kKeyHeight };
        graphics::addRoundedRect(cairo, key, 5);
        graphics::fill(cairo, Color::white(1, 0.12));
        graphics::addRoundedRect(cairo, key.inset(0.5, 0.5), 4.5);
        graphics::stroke(cairo, Color::white(1, 0.22), 1);
        graphics::drawText(cairo, rows[i].key, keyStyle, key, Color::white(0.95));
        graphics::drawText(cairo, rows[i].text, textStyle,
            { x + kKeyColumn, y, kWidth - kKeyColumn - 8, kKeyHeight }, Color::white(0.75));
    }
}

}
