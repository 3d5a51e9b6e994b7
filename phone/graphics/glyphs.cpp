#include "phone/graphics/glyphs.hpp"

#include "phone/graphics/path.hpp"

#include <cmath>
#include <numbers>

namespace phone::graphics {

namespace {

using std::numbers::pi;

// Drawn in their own boxes, in the context's current colour, which is opaque.

void strokeRound(cairo_t* context, double width)
{
    cairo_set_line_width(context, width);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(context);
}

// A shape whose corners are rounded by `radius`: give it that much smaller all round.
void fillRounded(cairo_t* context, double radius)
{
    cairo_fill_preserve(context);
    strokeRound(context, radius * 2);
}

void fillWithHoles(cairo_t* context)
{
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(context);
}

void drawTorch(cairo_t* context)   // 12 x 25
{
    addRoundedRect(context, { 0, 0, 12, 3.4 }, { 1.3, 1.3, 0.3, 0.3 });
    cairo_fill(context);
    cairo_move_to(context, 0, 4.6);
    cairo_line_to(context, 12, 4.6);
    cairo_curve_to(context, 12, 8, 9.3, 8.3, 9.3, 11.2);
    cairo_line_to(context, 9.3, 23.4);
    cairo_arc(context, 7.7, 23.4, 1.6, 0, pi / 2);
    cairo_arc(context, 4.3, 23.4, 1.6, pi / 2, pi);
    cairo_line_to(context, 2.7, 11.2);
    cairo_curve_to(context, 2.7, 8.3, 0, 8, 0, 4.6);
    cairo_close_path(context);
    addCapsule(context, { 5, 11.6, 2, 4.2 });
    fillWithHoles(context);
}

void drawCamera(cairo_t* context)   // 28 x 22
{
    cairo_move_to(context, 3.6, 3.6);
    cairo_line_to(context, 7.4, 3.6);
    cairo_curve_to(context, 8.9, 3.6, 8.8, 0, 11, 0);
    cairo_line_to(context, 17, 0);
    cairo_curve_to(context, 19.2, 0, 19.1, 3.6, 20.6, 3.6);
    cairo_line_to(context, 24.4, 3.6);
    cairo_arc(context, 24.2, 7.4, 3.8, -pi / 2, 0);
    cairo_arc(context, 24.2, 18.2, 3.8, 0, pi / 2);
    cairo_arc(context, 3.8, 18.2, 3.8, pi / 2, pi);
    cairo_arc(context, 3.8, 7.4, 3.8, pi, pi * 3 / 2);
    cairo_close_path(context);
    addCircle(context, { 14, 12.3 }, 6.1);
    addCircle(context, { 14, 12.3 }, 4.3);
    addCircle(context, { 23, 8.4 }, 1.25);
    fillWithHoles(context);
}

void drawPadlock(cairo_t* context, bool isOpen)   // 18 x 24, open 27 x 24
{
    addContinuousRect(context, { 0, 10.6, 18, 13.4 }, 2.6);
    cairo_fill(context);
    constexpr double kRadius = 5;
    constexpr double kWidth = 2.6;
    double const middle = isOpen ? 19.6 : 9;
    double const top = kWidth / 2 + kRadius;
    cairo_move_to(context, middle - kRadius, 12);
    cairo_line_to(context, middle - kRadius, top);
    cairo_arc(context, middle, top, kRadius, pi, 2 * pi);
    cairo_line_to(context, middle + kRadius, isOpen ? 9.4 : 12);
    strokeRound(context, kWidth);
}

void drawPadlockClosed(cairo_t* context) { drawPadlock(context, false); }
void drawPadlockOpen(cairo_t* context) { drawPadlock(context, true); }

// Pointing right, in the box given, corners rounded.
void addTriangle(cairo_t* context, Rect const& box, double radius)
{
    Rect const inner = box.inset(radius, radius);
    cairo_move_to(context, inner.x, inner.y);
    cairo_line_to(context, inner.maxX(), inner.midY());
    cairo_line_to(context, inner.x, inner.maxY());
    cairo_close_path(context);
}

void drawPlay(cairo_t* context)   // 20 x 22
{
    addTriangle(context, { 0, 0, 20, 22 }, 1);
    fillRounded(context, 1);
}

void drawPause(cairo_t* context)   // 16 x 22
{
    addRoundedRect(context, { 0, 0, 5.8, 22 }, 1.3);
    addRoundedRect(context, { 10.2, 0, 5.8, 22 }, 1.3);
    cairo_fill(context);
}

void drawNextTrack(cairo_t* context)   // 30 x 18
{
    addTriangle(context, { 0, 0, 16, 18 }, 0.8);
    fillRounded(context, 0.8);
    addTriangle(context, { 14, 0, 16, 18 }, 0.8);
    fillRounded(context, 0.8);
}

void drawPreviousTrack(cairo_t* context)   // 30 x 18
{
    cairo_translate(context, 30, 0);
    cairo_scale(context, -1, 1);
    drawNextTrack(context);
}

void drawBell(cairo_t* context)   // 22 x 24
{
    cairo_move_to(context, 11, 0.6);
    cairo_curve_to(context, 16.4, 0.9, 17.9, 4.8, 18, 8.4);
    cairo_curve_to(context, 18.1, 12.6, 19, 14.3, 20.9, 16.3);
    cairo_curve_to(context, 22.2, 17.7, 21.5, 19, 19.8, 19);
    cairo_line_to(context, 2.2, 19);
    cairo_curve_to(context, 0.5, 19, -0.2, 17.7, 1.1, 16.3);
    cairo_curve_to(context, 3, 14.3, 3.9, 12.6, 4, 8.4);
    cairo_curve_to(context, 4.1, 4.8, 5.6, 0.9, 11, 0.6);
    cairo_close_path(context);
    cairo_fill(context);
    addCircle(context, { 11, 1.6 }, 1.6);
    cairo_fill(context);
    cairo_move_to(context, 7.4, 20.4);
    cairo_line_to(context, 14.6, 20.4);
    cairo_curve_to(context, 14.4, 22.6, 13, 24, 11, 24);
    cairo_curve_to(context, 9, 24, 7.6, 22.6, 7.4, 20.4);
    cairo_close_path(context);
    cairo_fill(context);
}

void drawDeleteKey(cairo_t* context)   // 24 x 18
{
    cairo_move_to(context, 1.2, 9);
    cairo_line_to(context, 7.6, 1.9);
    cairo_curve_to(context, 8, 1.4, 8.5, 0.9, 9.4, 0.9);
    cairo_line_to(context, 20.4, 0.9);
    cairo_arc(context, 20.4, 3.6, 2.7, -pi / 2, 0);
    cairo_arc(context, 20.4, 14.4, 2.7, 0, pi / 2);
    cairo_line_to(context, 9.4, 17.1);
    cairo_curve_to(context, 8.5, 17.1, 8, 16.6, 7.6, 16.1);
    cairo_close_path(context);
    strokeRound(context, 1.7);
    cairo_move_to(context, 11.4, 5.6);
    cairo_line_to(context, 18.2, 12.4);
    cairo_move_to(context, 18.2, 5.6);
    cairo_line_to(context, 11.4, 12.4);
    strokeRound(context, 1.7);
}

void drawChevronRight(cairo_t* context)   // 10 x 17
{
    cairo_move_to(context, 1.3, 1.3);
    cairo_line_to(context, 8.6, 8.5);
    cairo_line_to(context, 1.3, 15.7);
    strokeRound(context, 2.4);
}

void drawChevronLeft(cairo_t* context)   // 10 x 17
{
    cairo_translate(context, 10, 0);
    cairo_scale(context, -1, 1);
    drawChevronRight(context);
}

void drawCheckmark(cairo_t* context)   // 18 x 17
{
    cairo_move_to(context, 1.3, 9.6);
    cairo_line_to(context, 6.7, 15.5);
    cairo_line_to(context, 16.7, 1.3);
    strokeRound(context, 2.4);
}

void drawCross(cairo_t* context)   // 16 x 16
{
    cairo_move_to(context, 1.2, 1.2);
    cairo_line_to(context, 14.8, 14.8);
    cairo_move_to(context, 14.8, 1.2);
    cairo_line_to(context, 1.2, 14.8);
    strokeRound(context, 2.2);
}

void drawPlus(cairo_t* context)   // 16 x 16
{
    cairo_move_to(context, 8, 1.1);
    cairo_line_to(context, 8, 14.9);
    cairo_move_to(context, 1.1, 8);
    cairo_line_to(context, 14.9, 8);
    strokeRound(context, 2.1);
}

void drawPerson(cairo_t* context)   // 22 x 24
{
    addEllipse(context, { 5.6, 0, 10.8, 12 });
    cairo_fill(context);
    cairo_move_to(context, 0, 21.4);
    cairo_curve_to(context, 0.4, 16.6, 4.6, 13.6, 11, 13.6);
    cairo_curve_to(context, 17.4, 13.6, 21.6, 16.6, 22, 21.4);
    cairo_curve_to(context, 22, 23.2, 21.2, 24, 19.6, 24);
    cairo_line_to(context, 2.4, 24);
    cairo_curve_to(context, 0.8, 24, 0, 23.2, 0, 21.4);
    cairo_close_path(context);
    cairo_fill(context);
}

void drawMagnifier(cairo_t* context)   // 18 x 18
{
    addCircle(context, { 7.3, 7.3 }, 6.3);
    strokeRound(context, 2);
    cairo_move_to(context, 11.9, 11.9);
    cairo_line_to(context, 16.8, 16.8);
    strokeRound(context, 2.3);
}

void drawInfo(cairo_t* context)   // 20 x 20
{
    addCircle(context, { 10, 10 }, 9.1);
    strokeRound(context, 1.6);
    addCircle(context, { 10, 5.9 }, 1.3);
    cairo_fill(context);
    cairo_move_to(context, 8.4, 9);
    cairo_line_to(context, 10.2, 9);
    cairo_line_to(context, 10.2, 14.6);
    cairo_move_to(context, 8, 14.6);
    cairo_line_to(context, 12.4, 14.6);
    strokeRound(context, 1.5);
}

struct GlyphRow {
    Glyph glyph;
    Size box;
    void (*draw)(cairo_t*);
};

constexpr GlyphRow kGlyphs[] = {
    { Glyph::torch, { 12, 25 }, drawTorch },
    { Glyph::camera, { 28, 22 }, drawCamera },
    { Glyph::padlockClosed, { 18, 24 }, drawPadlockClosed },
    { Glyph::padlockOpen, { 27, 24 }, drawPadlockOpen },
    { Glyph::play, { 20, 22 }, drawPlay },
    { Glyph::pause, { 16, 22 }, drawPause },
    { Glyph::nextTrack, { 30, 18 }, drawNextTrack },
    { Glyph::previousTrack, { 30, 18 }, drawPreviousTrack },
    { Glyph::bell, { 22, 24 }, drawBell },
    { Glyph::deleteKey, { 24, 18 }, drawDeleteKey },
    { Glyph::chevronLeft, { 10, 17 }, drawChevronLeft },
    { Glyph::chevronRight, { 10, 17 }, drawChevronRight },
    { Glyph::checkmark, { 18, 17 }, drawCheckmark },
    { Glyph::cross, { 16, 16 }, drawCross },
    { Glyph::plus, { 16, 16 }, drawPlus },
    { Glyph::person, { 22, 24 }, drawPerson },
    { Glyph::magnifier, { 18, 18 }, drawMagnifier },
    { Glyph::info, { 20, 20 }, drawInfo },
};

GlyphRow const& rowOf(Glyph glyph)
{
    for (GlyphRow const& row : kGlyphs) {
        if (row.glyph == glyph)
            return row;
    }
    return kGlyphs[0];
}

// Maps a box into rect, centred and in proportion.
void fitBox(cairo_t* context, Size box, Rect const& rect)
{
    double const scale = std::min(rect.width / box.width, rect.height / box.height);
    cairo_translate(context, rect.midX() - box.width * scale / 2, rect.midY() - box.height * scale / 2);
    cairo_scale(context, scale, scale);
}

// A ring's part within 45 degrees of straight up; radius 0 inside makes it a wedge.
void addWifiArc(cairo_t* context, double inner, double outer)
{
    constexpr double kStart = -pi * 3 / 4;
    constexpr double kEnd = -pi / 4;
    cairo_new_sub_path(context);
    cairo_arc(context, 0, 0, outer, kStart, kEnd);
    if (inner > 0)
        cairo_arc_negative(context, 0, 0, inner, kEnd, kStart);
    else
        cairo_line_to(context, 0, 0);
    cairo_close_path(context);
}

constexpr double kDimmed = 0.35;

}   // namespace

void drawGlyph(cairo_t* context, Glyph glyph, Rect const& rect, Color const& color)
{
    if (rect.isEmpty() || !(color.alpha > 0))
        return;
    GlyphRow const& row = rowOf(glyph);
    cairo_save(context);
    // Parts overlap; as a group they fade as one shape.
    bool const isTranslucent = color.alpha < 1;
    if (isTranslucent) {
        // Without a clip the group would be as large as the whole screen.
        addRect(context, rect.inset(-1, -1));
        cairo_clip(context);
        cairo_push_group(context);
    }
    fitBox(context, row.box, rect);
    cairo_new_path(context);
    setColor(context, color.withAlpha(1));
    row.draw(context);
    if (isTranslucent) {
        cairo_pop_group_to_source(context);
        cairo_paint_with_alpha(context, color.alpha);
    }
    cairo_restore(context);
}

double glyphAspect(Glyph glyph)
{
    Size const box = rowOf(glyph).box;
    return box.width / box.height;
}

void drawSignalBars(cairo_t* context, Rect const& rect, int bars, Color const& color)
{
    constexpr double kHeights[] = { 4.2, 6.4, 8.6, 11 };
    constexpr double kPitch = 4.8;
    cairo_save(context);
    fitBox(context, { 17.6, 11 }, rect);
    for (int i = 0; i < 4; ++i) {
        addRoundedRect(context, { i * kPitch, 11 - kHeights[i], 3.2, kHeights[i] }, 1);
        fill(context, i < bars ? color : color.withAlpha(color.alpha * kDimmed));
    }
    cairo_restore(context);
}

void drawWifi(cairo_t* context, Rect const& rect, int arcs, Color const& color)
{
    struct Ring {
        double inner;
        double outer;
    };
    constexpr Ring kRings[] = { { 0, 4.2 }, { 6, 8.7 }, { 10.5, 13.2 } };
    cairo_save(context);
    fitBox(context, { 18.7, 13.2 }, rect);
    cairo_translate(context, 9.35, 13.2);
    for (int i = 0; i < 3; ++i) {
        addWifiArc(context, kRings[i].inner, kRings[i].outer);
        fill(context, i < arcs ? color : color.withAlpha(color.alpha * kDimmed));
    }
    cairo_restore(context);
}

void drawBattery(cairo_t* context, Rect const& rect, double level, Color const& color, bool charging)
{
    constexpr double kLow = 0.2;
    cairo_save(context);
    fitBox(context, { 26, 12 }, rect);
    Color const outline = color.withAlpha(color.alpha * 0.4);
    addRoundedRect(context, { 0.5, 0.5, 22, 11 }, 3.4);
    stroke(context, outline, 1);
    cairo_new_sub_path(context);
    cairo_arc(context, 23.9, 6, 2.1, -pi / 2.6, pi / 2.6);
    cairo_close_path(context);
    fill(context, outline);
    double const share = std::isfinite(level) ? std::clamp(level, 0.0, 1.0) : 0;
    Color charge = color;
    if (charging)
        charge = Color::hex(0x34c759, color.alpha);
    else if (share <= kLow)
        charge = Color::hex(0xff3b30, color.alpha);
    // Cut off at the level rather than squeezed, so that the left end keeps its corners.
    addRoundedRect(context, { 2, 2, 19, 8 }, 2);
    cairo_clip(context);
    addRect(context, { 2, 2, 19 * share, 8 });
    fill(context, charge);
    cairo_restore(context);
}

}   // namespace phone::graphics
