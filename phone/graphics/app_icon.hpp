// Application icons in a drawing of our own: neutral signs, and letter tiles for the rest.
#pragma once

#include "phone/graphics/bitmap.hpp"

#include <string_view>

namespace phone::graphics {

enum class AppIcon {
    phone,
    messages,
    mail,
    video,
    calendar,
    contacts,
    settings,
    music,
    browser,
};

// Square of `side` points with continuous corners; transparent outside.
Bitmap appIcon(AppIcon, double side, double scale);

// For any other application: the first character of its name on a colour that follows from the
// identifier. An empty name shows a plain tile.
Bitmap letterIcon(std::string_view name, std::string_view identifier, double side, double scale);

// Paints without a bitmap, filling the square rect.
void drawAppIcon(cairo_t*, AppIcon, Rect const&);
void drawLetterIcon(cairo_t*, std::string_view name, std::string_view identifier, Rect const&);

}   // namespace phone::graphics
