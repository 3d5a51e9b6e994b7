#include "phone/graphics/app_icon.hpp"

#include "phone/graphics/glyphs.hpp"
#include "phone/graphics/path.hpp"
#include "phone/graphics/text.hpp"

#include <cstdint>
#include <numbers>

namespace phone::graphics {

namespace {

using std::numbers::pi;
constexpr double kSide = 60;   // points of the grid that icons are drawn on
constexpr double kCornerRadius = 13.5;
constexpr Color kWhite = Color::white();

void fillTile(cairo_t* context, Color top, Color bottom)
{
    addContinuousRect(context, { 0, 0, kSide, kSide }, kCornerRadius);
    cairo_pattern_t* const gradient = cairo_pattern_create_linear(0, 0, 0, kSide);
    cairo_pattern_add_color_stop_rgb(gradient, 0, top.red, top.green, top.blue);
    cairo_pattern_add_color_stop_rgb(gradient, 1, bottom.red, bottom.green, bottom.blue);
    cairo_set_source(context, gradient);
    cairo_fill(context);
    cairo_pattern_destroy(gradient);
}

// A handset seen from the side: two rounded ends joined by a bow, tilted.
void drawPhone(cairo_t* context)
{
    fillTile(context, Color::hex(0x6be37c), Color::hex(0x1fb141));
    cairo_translate(context, 30, 30);
    cairo_rotate(context, -pi * 3 / 4);
    cairo_new_path(context);
    cairo_move_to(context, -17.6, -1.6);
    cairo_curve_to(context, -14, -9.6, 14, -9.6, 17.6, -1.6);
    cairo_curve_to(context, 18.6, 0.8, 18.4, 3.4, 17.6, 4.6);
    cairo_curve_to(context, 16.8, 5.8, 14.8, 5.5, 12.4, 5);
    cairo_curve_to(context, 9.4, 4.4, 8.2, 3.9, 8, 2);
    cairo_curve_to(context, 7.8, -0.2, 7.8, -1, 6.4, -1.6);
    cairo_curve_to(context, 3.4, -2.8, -3.4, -2.8, -6.4, -1.6);
    cairo_curve_to(context, -7.8, -1, -7.8, -0.2, -8, 2);
    cairo_curve_to(context, -8.2, 3.9, -9.4, 4.4, -12.4, 5);
    cairo_curve_to(context, -14.8, 5.5, -16.8, 5.8, -17.6, 4.6);
    cairo_curve_to(context, -18.4, 3.4, -18.6, 0.8, -17.6, -1.6);
    cairo_close_path(context);
    fill(context, kWhite);
}

void drawMessages(cairo_t* context)
{
    fillTile(context, Color::hex(0x62d8ff), Color::hex(0x1478f0));
    addEllipse(context, { 11, 13, 38, 31 });
    fill(context, kWhite);
    cairo_move_to(context, 18, 38);
    cairo_curve_to(context, 18.6, 42.6, 17, 46, 14.2, 48);
    cairo_curve_to(context, 19.6, 48, 24, 46.4, 27, 43);
    cairo_close_path(context);
    fill(context, kWhite);
    for (double const x : { 21.5, 30.0, 38.5 }) {
        addCircle(context, { x, 28.5 }, 2.5);
        fill(context, Color::hex(0x2f93f5));
    }
}

void drawMail(cairo_t* context)
{
    fillTile(context, Color::hex(0x8a8cf7), Color::hex(0x4a3fd6));
    Rect const envelope { 10.5, 17, 39, 27 };
    addContinuousRect(context, envelope, 4);
    fill(context, kWhite);
    addContinuousRect(context, envelope, 4);
    cairo_save(context);
    cairo_clip(context);
    Color const fold = Color::hex(0x5a50df);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    cairo_move_to(context, 9, 46);
    cairo_line_to(context, 24.6, 30);
    cairo_move_to(context, 51, 46);
    cairo_line_to(context, 35.4, 30);
    stroke(context, fold.withAlpha(0.55), 1.5);
    cairo_move_to(context, 9.4, 15.6);
    cairo_line_to(context, 27, 32.4);
    cairo_curve_to(context, 28.9, 34.1, 31.1, 34.1, 33, 32.4);
    cairo_line_to(context, 50.6, 15.6);
    stroke(context, fold, 1.9);
    cairo_restore(context);
}

void drawVideo(cairo_t* context)
{
    fillTile(context, Color::hex(0x52dfc0), Color::hex(0x0a9c8c));
    addContinuousRect(context, { 9.5, 19, 28, 22 }, 5.4);
    fill(context, kWhite);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    cairo_move_to(context, 41.4, 27.6);
    cairo_line_to(context, 49, 22.4);
    cairo_line_to(context, 49, 37.6);
    cairo_line_to(context, 41.4, 32.4);
    cairo_close_path(context);
    setColor(context, kWhite);
    cairo_fill_preserve(context);
    stroke(context, kWhite, 2.6);
}

void drawCalendar(cairo_t* context)
{
    fillTile(context, Color::hex(0xffffff), Color::hex(0xececf1));
    addContinuousRect(context, { 0, 0, kSide, kSide }, kCornerRadius);
    cairo_save(context);
    cairo_clip(context);
    addRect(context, { 0, 0, kSide, 17 });
    fill(context, Color::hex(0xf2554a));
    cairo_restore(context);
    for (double const x : { 18.0, 42.0 }) {
        addCapsule(context, { x - 1.8, 5.4, 3.6, 6.2 });
        fill(context, Color::white(1, 0.9));
    }
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            bool const isToday = row == 1 && column == 2;
            addRoundedRect(context, { 10.5 + column * 10.2, 23.5 + row * 10.2, 7.6, 7.6 }, 2.2);
            fill(context, isToday ? Color::hex(0xf2554a) : Color::hex(0xc9c9d2));
        }
    }
}

void drawContacts(cairo_t* context)
{
    fillTile(context, Color::hex(0xd9c3a4), Color::hex(0xa9895f));
    addContinuousRect(context, { 11, 9, 36, 42 }, 6);
    fill(context, Color::hex(0xfaf6ef));
    constexpr unsigned kTabs[] = { 0xef6f6c, 0xf2b84b, 0x6cbf84 };
    for (int i = 0; i < 3; ++i) {
        addRoundedRect(context, { 47, 14.0 + i * 11, 3.6, 9 }, { 0, 2, 2, 0 });
        fill(context, Color::hex(kTabs[i]));
    }
    drawGlyph(context, Glyph::person, { 19, 17, 20, 24 }, Color::hex(0x8d6f49));
}

void drawSettings(cairo_t* context)
{
    fillTile(context, Color::hex(0xa9adb8), Color::hex(0x676b76));
    cairo_translate(context, 30, 30);
    constexpr int kTeeth = 9;
    for (int i = 0; i < kTeeth; ++i) {
        cairo_save(context);
        cairo_rotate(context, i * 2 * pi / kTeeth);
        addRoundedRect(context, { -3.3, -19.5, 6.6, 9 }, 1.9);
        fill(context, Color::hex(0xf4f5f8));
        cairo_restore(context);
    }
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    addCircle(context, {}, 15.2);
    addCircle(context, {}, 6.2);
    fill(context, Color::hex(0xf4f5f8));
}

void drawMusic(cairo_t* context)
{
    fillTile(context, Color::hex(0xff8a5c), Color::hex(0xe0355f));
    for (Point const head : { Point { 22, 41.5 }, Point { 39.5, 38 } }) {
        cairo_save(context);
        cairo_translate(context, head.x, head.y);
        cairo_rotate(context, -0.35);
        addEllipse(context, { -5.6, -4.3, 11.2, 8.6 });
        fill(context, kWhite);
        cairo_restore(context);
    }
    cairo_move_to(context, 24.2, 42);
    cairo_line_to(context, 24.2, 17.6);
    cairo_line_to(context, 44.9, 13.4);
    cairo_line_to(context, 44.9, 38);
    cairo_line_to(context, 41.7, 38);
    cairo_line_to(context, 41.7, 21.2);
    cairo_line_to(context, 27.4, 24.1);
    cairo_line_to(context, 27.4, 42);
    cairo_close_path(context);
    fill(context, kWhite);
}

void drawBrowser(cairo_t* context)
{
    fillTile(context, Color::hex(0xfdfdff), Color::hex(0xdfe6f2));
    Color const ink = Color::hex(0x2d7ff0);
    Rect const globe { 12, 12, 36, 36 };
    addEllipse(context, globe);
    fill(context, Color::hex(0xd4e6ff));
    addEllipse(context, globe);
    stroke(context, ink, 2.2);
    addEllipse(context, { 22, 12, 16, 36 });
    stroke(context, ink, 1.8);
    addEllipse(context, globe);
    cairo_save(context);
    cairo_clip(context);
    for (double const y : { 22.0, 30.0, 38.0 }) {
        cairo_move_to(context, 10, y);
        cairo_line_to(context, 50, y);
    }
    stroke(context, ink, 1.8);
    cairo_restore(context);
}

struct IconRow {
    AppIcon icon;
    void (*draw)(cairo_t*);
};

constexpr IconRow kIcons[] = {
    { AppIcon::phone, drawPhone },
    { AppIcon::messages, drawMessages },
    { AppIcon::mail, drawMail },
    { AppIcon::video, drawVideo },
    { AppIcon::calendar, drawCalendar },
    { AppIcon::contacts, drawContacts },
    { AppIcon::settings, drawSettings },
    { AppIcon::music, drawMusic },
    { AppIcon::browser, drawBrowser },
};

struct TileColors {
    unsigned top;
    unsigned bottom;
};

constexpr TileColors kTiles[] = {
    { 0x7bb7ff, 0x2f6fe4 },
    { 0x6ddc9b, 0x1f9e63 },
    { 0xffb36b, 0xee7b28 },
    { 0xff8f9c, 0xdf3f5f },
    { 0xc79bff, 0x7f4fd8 },
    { 0x6fdbe0, 0x1d92a8 },
    { 0xffd66b, 0xe9a21d },
    { 0x9aa7bd, 0x566479 },
};

// FNV-1a: the same on every machine and in every run, as std::hash needn't be.
std::uint32_t stableHash(std::string_view text)
{
    std::uint32_t hash = 2166136261u;
    for (char const c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash ^ hash >> 15;
}

void enterGrid(cairo_t* context, Rect const& rect)
{
    cairo_translate(context, rect.x, rect.y);
    cairo_scale(context, rect.width / kSide, rect.height / kSide);
    cairo_new_path(context);
}

}   // namespace

Bitmap appIcon(AppIcon icon, double side, double scale)
{
    Bitmap const bitmap = Bitmap::withPoints({ side, side }, scale);
    if (bitmap)
        drawAppIcon(bitmap.newContext().get(), icon, bitmap.bounds());
    return bitmap;
}

Bitmap letterIcon(std::string_view name, std::string_view identifier, double side, double scale)
{
    Bitmap const bitmap = Bitmap::withPoints({ side, side }, scale);
    if (bitmap)
        drawLetterIcon(bitmap.newContext().get(), name, identifier, bitmap.bounds());
    return bitmap;
}

void drawAppIcon(cairo_t* context, AppIcon icon, Rect const& rect)
{
    if (rect.isEmpty())
        return;
    for (IconRow const& row : kIcons) {
        if (row.icon != icon)
            continue;
        cairo_save(context);
        enterGrid(context, rect);
        row.draw(context);
        cairo_restore(context);
    }
}

void drawLetterIcon(cairo_t* context, std::string_view name, std::string_view identifier, Rect const& rect)
{
    if (rect.isEmpty())
        return;
    cairo_save(context);
    enterGrid(context, rect);
    TileColors const colors = kTiles[stableHash(identifier) % std::size(kTiles)];
    fillTile(context, Color::hex(colors.top), Color::hex(colors.bottom));
    TextStyle style;
    style.font = systemFont(34, FontWeight::kSemibold);
    style.alignment = TextAlignment::center;
    drawText(context, firstCharacter(name), style, { 0, -0.5, kSide, kSide }, kWhite);
    cairo_restore(context);
}

}   // namespace phone::graphics
