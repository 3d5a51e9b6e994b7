#include "phone/art/art.hpp"
#include "phone/graphics/path.hpp"

#include <iterator>

namespace phone::art {

using namespace graphics;

namespace {

constexpr double kPortraitGrid = 200;   // all shapes below are on a square of this side
constexpr double kMiddle = 100;

}   // namespace

namespace {

constexpr Portrait kPortraits[] = {
    { "portrait1", 0xffb26b, 0xf2604f, 0xf3cda8, 0x4b2c1c, 0x2a6f97, Hair::bob },
    { "portrait2", 0x9bd0e8, 0x3d83ad, 0xdba67c, 0x1d1513, 0xe07a5f, Hair::crop, Collar::shirt },
    { "portrait3", 0xbdeac6, 0x43a077, 0xf9dccb, 0xdba43f, 0x6a4c9c, Hair::fringe },
    { "portrait4", 0xdcc6f7, 0x8d78cf, 0x8b5a3c, 0x120d0c, 0xf4d35e, Hair::curls, Collar::round, false, false,
        true },
    { "portrait5", 0xfac8d6, 0xcf3d68, 0xf1c6a4, 0x7c3b1c, 0x1d4d66, Hair::longWaves, Collar::vNeck },
    { "portrait6", 0xffe19c, 0xf0a13c, 0xc88d62, 0x241814, 0x37506b, Hair::quiff, Collar::shirt, true, true },
    { "portrait7", 0xa9e7e4, 0x2f9aa0, 0xe9b98f, 0xb5485d, 0xb5485d, Hair::scarf, Collar::round },
    { "portrait8", 0xcdd8f2, 0x6d86c6, 0xf4d2b8, 0xc9ccd2, 0x5b7553, Hair::bun, Collar::shirt, true, false,
        true },
    { "portrait9", 0xd4e7b0, 0x7fae4e, 0x6f432b, 0x2a1c16, 0xd95d39, Hair::bald, Collar::hood, false, true },
    { "portrait10", 0xb9c6ff, 0x4f5bd5, 0xf0cba0, 0x15131a, 0xef8fa3, Hair::ponytail, Collar::hood, false,
        false, false, true },
};

Color shaded(Color const& color, double amount) { return mix(color, Color::hex(0x3a1a24), amount); }

Color lit(Color const& color, double amount) { return mix(color, Color::white(), amount); }

void paintBackdrop(cairo_t* context, Portrait const& portrait)
{
    Color const top = Color::hex(portrait.backdropTop);
    Color const bottom = Color::hex(portrait.backdropBottom);
    cairo_pattern_t* const gradient = cairo_pattern_create_linear(20, 0, 180, kPortraitGrid);
    cairo_pattern_add_color_stop_rgb(gradient, 0, top.red, top.green, top.blue);
    cairo_pattern_add_color_stop_rgb(gradient, 1, bottom.red, bottom.green, bottom.blue);
    cairo_set_source(context, gradient);
    cairo_paint(context);
    cairo_pattern_destroy(gradient);
}

// From temple to temple over the crown and under the chin.
void addHead(cairo_t* context)
{
    cairo_move_to(context, 62, 92);
    cairo_curve_to(context, 62, 66, 78, 50, kMiddle, 50);
    cairo_curve_to(context, 122, 50, 138, 66, 138, 92);
    cairo_curve_to(context, 138, 122, 121, 143, kMiddle, 143);
    cairo_curve_to(context, 79, 143, 62, 122, 62, 92);
    cairo_close_path(context);
}

void paintShoulders(cairo_t* context, Portrait const& portrait)
{
    Color const clothes = Color::hex(portrait.clothes);
    cairo_move_to(context, 22, 206);
    cairo_curve_to(context, 24, 172, 48, 158, 80, 153);
    cairo_line_to(context, 120, 153);
    cairo_curve_to(context, 152, 158, 176, 172, 178, 206);
    cairo_close_path(context);
    fill(context, clothes);
    if (portrait.collar == Collar::hood) {
        cairo_move_to(context, 62, 160);
        cairo_curve_to(context, 66, 142, 134, 142, 138, 160);
        cairo_curve_to(context, 136, 184, 112, 196, kMiddle, 196);
        cairo_curve_to(context, 88, 196, 64, 184, 62, 160);
        cairo_close_path(context);
        fill(context, shaded(clothes, 0.22));
    }
}

void paintNeck(cairo_t* context, Portrait const& portrait)
{
    Color const skin = Color::hex(portrait.skin);
    cairo_move_to(context, 85, 122);
    cairo_line_to(context, 115, 122);
    cairo_line_to(context, 115, 153);
    if (portrait.collar == Collar::vNeck) {
        cairo_curve_to(context, 115, 160, 106, 176, kMiddle, 183);
        cairo_curve_to(context, 94, 176, 85, 160, 85, 153);
    } else {
        cairo_curve_to(context, 115, 169, 85, 169, 85, 153);
    }
    cairo_close_path(context);
    fill(context, shaded(skin, 0.06));
    // The chin's shadow.
    cairo_save(context);
    addRect(context, { 85, 122, 30, 50 });
    cairo_clip(context);
    addEllipse(context, { 70, 102, 60, 50 });
    fill(context, shaded(skin, 0.24));
    cairo_restore(context);
}

void paintCollar(cairo_t* context, Portrait const& portrait)
{
    Color const clothes = Color::hex(portrait.clothes);
    switch (portrait.collar) {
    case Collar::round:
        cairo_move_to(context, 83.5, 153);
        cairo_curve_to(context, 84, 171, 116, 171, 116.5, 153);
        stroke(context, shaded(clothes, 0.25), 3);
        break;
    case Collar::shirt:
        for (double const side : { -1.0, 1.0 }) {
            cairo_move_to(context, kMiddle + side * 18, 149);
            cairo_line_to(context, kMiddle + side * 27, 158);
            cairo_line_to(context, kMiddle + side * 17, 180);
            cairo_line_to(context, kMiddle, 167);
            cairo_curve_to(
                context, kMiddle + side * 10, 166, kMiddle + side * 17, 158, kMiddle + side * 18, 149);
            cairo_close_path(context);
            fill(context, lit(clothes, 0.3));
        }
        for (double const y : { 180.0, 193.0 }) {
            addCircle(context, { kMiddle, y }, 1.9);
            fill(context, lit(clothes, 0.55));
        }
        break;
    case Collar::hood:
        for (double const side : { -1.0, 1.0 }) {
            cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
            cairo_move_to(context, kMiddle + side * 11, 172);
            cairo_curve_to(
                context, kMiddle + side * 13, 180, kMiddle + side * 10, 184, kMiddle + side * 12, 192);
            stroke(context, lit(clothes, 0.65), 2.4);
        }
        break;
    case Collar::vNeck: break;
    }
}

bool coversEars(Hair style)
{
    return style == Hair::bob || style == Hair::fringe || style == Hair::longWaves || style == Hair::scarf;
}

void paintEars(cairo_t* context, Portrait const& portrait)
{
    Color const skin = Color::hex(portrait.skin);
    for (double const side : { -1.0, 1.0 }) {
        addEllipse(context, { kMiddle + side * 38 - 6.5, 91, 13, 20 });
        fill(context, shaded(skin, 0.08));
        addEllipse(context, { kMiddle + side * 39 - 2.6, 96, 5.2, 10 });
        fill(context, shaded(skin, 0.22));
    }
}

void paintFace(cairo_t* context, Portrait const& portrait)
{
    Color const skin = Color::hex(portrait.skin);
    Color const ink = Color::hex(0x2a1a18);
    bool const isDeep = skin.red + skin.green + skin.blue < 1.3;
    for (double const side : { -1.0, 1.0 }) {
        // Cheek, brow, eye with its glint.
        addEllipse(context, { kMiddle + side * 23 - 8, 108, 16, 9.5 });
        fill(context, Color::hex(isDeep ? 0xd0533f : 0xf2776d, isDeep ? 0.28 : 0.30));
        cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
        cairo_move_to(context, kMiddle + side * 9.5, 87.6);
        cairo_curve_to(
            context, kMiddle + side * 13, 84.4, kMiddle + side * 18.5, 84.4, kMiddle + side * 22, 87.4);
        Color const brow = portrait.style == Hair::scarf ? Color::hex(0x3a261e) : Color::hex(portrait.hair);
        stroke(context, shaded(brow, 0.25), 2.7);
        addEllipse(context, { kMiddle + side * 15.5 - 3.5, 94, 7, 8.8 });
        fill(context, ink);
        addCircle(context, { kMiddle + side * 15.5 + 1.2, 96.5 }, 1.25);
        fill(context, Color::white(1, 0.9));
    }
    cairo_move_to(context, 97.6, 112.4);
    cairo_curve_to(context, 99, 114.2, 101, 114.2, 102.4, 112.4);
    stroke(context, shaded(skin, 0.38), 2.3);
    if (portrait.hasBeard) {
        // Along the jaw from ear to ear, leaving the mouth free.
        cairo_save(context);
        addHead(context);
        cairo_clip(context);
        cairo_move_to(context, 58, 98);
        cairo_curve_to(context, 66, 106, 66, 114, 78, 116);
        cairo_curve_to(context, 86, 116, 92, 114.5, kMiddle, 117);
        cairo_curve_to(context, 108, 114.5, 114, 116, 122, 116);
        cairo_curve_to(context, 134, 114, 134, 106, 142, 98);
        cairo_line_to(context, 142, 150);
        cairo_line_to(context, 58, 150);
        cairo_close_path(context);
        fill(context, Color::hex(portrait.hair));
        cairo_restore(context);
        cairo_move_to(context, 89.5, 122);
        cairo_curve_to(context, 93, 131.5, 107, 131.5, 110.5, 122);
        cairo_close_path(context);
        fill(context, Color::hex(0xfff6f0));
        return;
    }
    cairo_move_to(context, 88.5, 121);
    cairo_curve_to(context, 92, 130.5, 108, 130.5, 111.5, 121);
    stroke(context, isDeep ? Color::hex(0x4a1a18) : Color::hex(0xa0403a), 2.8);
}

void paintGlasses(cairo_t* context)
{
    Color const frame = Color::hex(0x2b2b33);
    for (double const side : { -1.0, 1.0 }) {
        Rect const lens { kMiddle + side * 16 - 12, 89.5, 24, 19.5 };
        addRoundedRect(context, lens, 8.5);
        fill(context, Color::white(1, 0.16));
        addRoundedRect(context, lens, 8.5);
        stroke(context, frame, 2.5);
        cairo_move_to(context, kMiddle + side * 28, 96.5);
        cairo_line_to(context, kMiddle + side * 38, 94.5);
        stroke(context, frame, 2.4);
    }
    cairo_move_to(context, 96, 97);
    cairo_curve_to(context, 98, 94.6, 102, 94.6, 104, 97);
    stroke(context, frame, 2.4);
}

void paintEarrings(cairo_t* context)
{
    for (double const side : { -1.0, 1.0 }) {
        addCircle(context, { kMiddle + side * 39.5, 114.5 }, 3.6);
        fill(context, Color::hex(0xffd36b));
    }
}

// What lies behind head and neck.
void paintHairBehind(cairo_t* context, Portrait const& portrait)
{
    Color const hair = Color::hex(portrait.hair);
    switch (portrait.style) {
    case Hair::bob:
    case Hair::fringe:
        cairo_move_to(context, 53, 96);
        cairo_curve_to(context, 50, 60, 70, 40, kMiddle, 40);
        cairo_curve_to(context, 130, 40, 150, 60, 147, 96);
        cairo_curve_to(context, 148, 116, 146, 130, 138, 140);
        cairo_curve_to(context, 126, 148, 74, 148, 62, 140);
        cairo_curve_to(context, 54, 130, 52, 116, 53, 96);
        cairo_close_path(context);
        fill(context, shaded(hair, 0.16));
        break;
    case Hair::longWaves:
        cairo_move_to(context, 53, 92);
        cairo_curve_to(context, 48, 58, 70, 38, kMiddle, 38);
        cairo_curve_to(context, 130, 38, 152, 58, 147, 92);
        cairo_curve_to(context, 144, 112, 158, 124, 152, 146);
        cairo_curve_to(context, 150, 160, 158, 166, 150, 182);
        cairo_line_to(context, 50, 182);
        cairo_curve_to(context, 42, 166, 50, 160, 48, 146);
        cairo_curve_to(context, 42, 124, 56, 112, 53, 92);
        cairo_close_path(context);
        fill(context, shaded(hair, 0.18));
        break;
    case Hair::bun:
        addCircle(context, { kMiddle, 37 }, 17);
        fill(context, shaded(hair, 0.10));
        addEllipse(context, { 58, 46, 84, 80 });
        fill(context, shaded(hair, 0.14));
        break;
    case Hair::curls: {
        struct Curl {
            double x;
            double y;
            double radius;
        };
        constexpr Curl kCurls[] = { { 62, 68, 20 }, { 80, 50, 20 }, { 100, 44, 21 }, { 120, 50, 20 },
            { 138, 68, 20 }, { 52, 90, 17 }, { 148, 90, 17 }, { 55, 110, 14 }, { 145, 110, 14 },
            { 100, 78, 42 } };
        for (Curl const& curl : kCurls)
            addCircle(context, { curl.x, curl.y }, curl.radius);
        fill(context, hair);
        break;
    }
    case Hair::ponytail:
        cairo_move_to(context, 128, 58);
        cairo_curve_to(context, 160, 52, 170, 82, 162, 108);
        cairo_curve_to(context, 158, 128, 164, 140, 150, 152);
        cairo_curve_to(context, 148, 132, 140, 120, 140, 98);
        cairo_close_path(context);
        fill(context, shaded(hair, 0.1));
        addEllipse(context, { 58, 44, 84, 74 });
        fill(context, hair);
        break;
    case Hair::scarf:
        cairo_move_to(context, 50, 100);
        cairo_curve_to(context, 46, 58, 70, 36, kMiddle, 36);
        cairo_curve_to(context, 130, 36, 154, 58, 150, 100);
        cairo_curve_to(context, 150, 130, 152, 150, 164, 176);
        cairo_line_to(context, 36, 176);
        cairo_curve_to(context, 48, 150, 50, 130, 50, 100);
        cairo_close_path(context);
        fill(context, shaded(hair, 0.2));
        break;
    case Hair::crop:
    case Hair::quiff:
    case Hair::bald: break;
    }
}

void addCap(cairo_t* context, double crown, double reach)
{
    // Outer edge from temple to temple; the caller draws the hairline back.
    cairo_move_to(context, kMiddle - reach, 98);
    cairo_curve_to(context, kMiddle - reach - 4, crown + 18, kMiddle - 26, crown, kMiddle, crown);
    cairo_curve_to(context, kMiddle + 26, crown, kMiddle + reach + 4, crown + 18, kMiddle + reach, 98);
}

void paintScarf(cairo_t* context, Color const& cloth)
{
    // A frame around the face, then the drape below the chin.
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_move_to(context, 52, 98);
    cairo_curve_to(context, 48, 60, 70, 38, kMiddle, 38);
    cairo_curve_to(context, 130, 38, 152, 60, 148, 98);
    cairo_curve_to(context, 148, 132, 128, 158, kMiddle, 158);
    cairo_curve_to(context, 72, 158, 52, 132, 52, 98);
    cairo_close_path(context);
    cairo_move_to(context, 66, 97);
    cairo_curve_to(context, 65, 74, 80, 63, kMiddle, 63);
    cairo_curve_to(context, 120, 63, 135, 74, 134, 97);
    cairo_curve_to(context, 133, 121, 118, 140, kMiddle, 140);
    cairo_curve_to(context, 82, 140, 67, 121, 66, 97);
    cairo_close_path(context);
    fill(context, cloth);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
    cairo_move_to(context, 62, 134);
    cairo_curve_to(context, 78, 152, 122, 152, 138, 134);
    cairo_curve_to(context, 148, 156, 156, 168, 160, 206);
    cairo_line_to(context, 40, 206);
    cairo_curve_to(context, 44, 168, 52, 156, 62, 134);
    cairo_close_path(context);
    fill(context, lit(cloth, 0.08));
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    cairo_move_to(context, 132, 142);
    cairo_curve_to(context, 116, 164, 92, 172, 66, 176);
    stroke(context, shaded(cloth, 0.22), 2.6);
    cairo_move_to(context, 138, 154);
    cairo_curve_to(context, 124, 176, 104, 188, 84, 194);
    stroke(context, shaded(cloth, 0.22), 2.6);
}

// What lies over the forehead.
void paintHairInFront(cairo_t* context, Portrait const& portrait)
{
    Color const hair = Color::hex(portrait.hair);
    switch (portrait.style) {
    case Hair::bob:
        cairo_move_to(context, 53, 96);
        cairo_curve_to(context, 50, 60, 70, 40, kMiddle, 40);
        cairo_curve_to(context, 130, 40, 150, 60, 147, 96);
        cairo_curve_to(context, 148, 112, 147, 124, 142, 134);
        cairo_curve_to(context, 138, 122, 137, 110, 136, 96);
        cairo_curve_to(context, 128, 92, 120, 84, 114, 70);
        cairo_curve_to(context, 104, 82, 84, 90, 65, 91);
        cairo_curve_to(context, 63, 108, 62, 122, 58, 134);
        cairo_curve_to(context, 53, 124, 52, 112, 53, 96);
        cairo_close_path(context);
        fill(context, hair);
        break;
    case Hair::fringe:
        cairo_move_to(context, 53, 96);
        cairo_curve_to(context, 50, 60, 70, 40, kMiddle, 40);
        cairo_curve_to(context, 130, 40, 150, 60, 147, 96);
        cairo_curve_to(context, 148, 112, 147, 124, 141, 136);
        cairo_curve_to(context, 137, 122, 136, 104, 135, 84);
        cairo_curve_to(context, 116, 78, 84, 78, 65, 84);
        cairo_curve_to(context, 64, 104, 63, 122, 59, 136);
        cairo_curve_to(context, 53, 124, 52, 112, 53, 96);
        cairo_close_path(context);
        fill(context, hair);
        break;
    case Hair::longWaves:
        cairo_move_to(context, 56, 118);
        cairo_curve_to(context, 46, 64, 68, 38, kMiddle, 38);
        cairo_curve_to(context, 132, 38, 154, 64, 144, 118);
        cairo_curve_to(context, 139, 106, 138, 96, 135, 88);
        cairo_curve_to(context, 120, 84, 104, 74, 96, 60);
        cairo_curve_to(context, 92, 76, 78, 86, 65, 90);
        cairo_curve_to(context, 62, 98, 61, 108, 56, 118);
        cairo_close_path(context);
        fill(context, hair);
        break;
    case Hair::crop:
        addCap(context, 42, 40);
        cairo_curve_to(context, 137, 90, 136, 84, 134, 80);
        cairo_curve_to(context, 122, 74, 110, 66, 104, 62);
        cairo_curve_to(context, 98, 72, 82, 78, 66, 80);
        cairo_curve_to(context, 64, 84, 63, 90, 60, 98);
        cairo_close_path(context);
        fill(context, hair);
        break;
    case Hair::quiff:
        cairo_move_to(context, 61, 98);
        cairo_curve_to(context, 56, 76, 58, 60, 70, 52);
        cairo_curve_to(context, 76, 36, 112, 28, 134, 42);
        cairo_curve_to(context, 130, 44, 130, 46, 132, 48);
        cairo_curve_to(context, 142, 58, 144, 78, 139, 98);
        cairo_curve_to(context, 137, 90, 136, 82, 132, 74);
        cairo_curve_to(context, 112, 76, 90, 72, 74, 66);
        cairo_curve_to(context, 68, 74, 64, 86, 61, 98);
        cairo_close_path(context);
        fill(context, hair);
        break;
    case Hair::bun:
        addCap(context, 45, 40);
        cairo_curve_to(context, 137, 84, 124, 68, kMiddle, 66);
        cairo_curve_to(context, 76, 68, 63, 84, 60, 98);
        cairo_close_path(context);
        fill(context, hair);
        cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
        for (double const side : { -1.0, 1.0 }) {
            cairo_move_to(context, kMiddle + side * 6, 52);
            cairo_curve_to(
                context, kMiddle + side * 18, 56, kMiddle + side * 28, 66, kMiddle + side * 34, 80);
            stroke(context, shaded(hair, 0.16), 2);
        }
        break;
    case Hair::curls: {
        constexpr Point kRow[] = { { 68, 74 }, { 80, 65 }, { 94, 61 }, { 108, 61 }, { 121, 65 },
            { 132, 74 } };
        for (Point const& place : kRow)
            addCircle(context, place, 11.5);
        fill(context, hair);
        addEllipse(context, { 68, 48, 64, 24 });
        fill(context, hair);
        break;
    }
    case Hair::ponytail:
        addCap(context, 43, 40);
        cairo_curve_to(context, 136, 84, 126, 72, 116, 66);
        cairo_curve_to(context, 102, 70, 78, 78, 66, 84);
        cairo_curve_to(context, 63, 88, 62, 92, 60, 98);
        cairo_close_path(context);
        fill(context, hair);
        addRoundedRect(context, { 133, 60, 10, 15 }, 4);
        fill(context, Color::hex(portrait.clothes));
        break;
    case Hair::scarf: paintScarf(context, hair); break;
    case Hair::bald:
        cairo_save(context);
        addHead(context);
        cairo_clip(context);
        addEllipse(context, { 78, 54, 26, 11 });
        fill(context, Color::white(1, 0.14));
        cairo_restore(context);
        break;
    }
}

}   // namespace

std::span<Portrait const> portraits() { return kPortraits; }

Bitmap drawPortrait(Portrait const& portrait, int sidePixels)
{
    Bitmap const bitmap = Bitmap::withPixels(sidePixels, sidePixels);
    Context const owner = bitmap.newContext();
    cairo_t* const context = owner.get();
    cairo_scale(context, sidePixels / kPortraitGrid, sidePixels / kPortraitGrid);
    paintBackdrop(context, portrait);
    paintHairBehind(context, portrait);
    paintShoulders(context, portrait);
    paintNeck(context, portrait);
    paintCollar(context, portrait);
    if (!coversEars(portrait.style))
        paintEars(context, portrait);
    addHead(context);
    fill(context, Color::hex(portrait.skin));
    paintFace(context, portrait);
    paintHairInFront(context, portrait);
    if (portrait.hasEarrings)
        paintEarrings(context);
    if (portrait.hasGlasses)
        paintGlasses(context);
    return bitmap;
}

}   // namespace phone::art
