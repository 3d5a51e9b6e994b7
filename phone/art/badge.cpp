#include "phone/art/art.hpp"
#include "phone/graphics/path.hpp"

namespace phone::art {

using namespace graphics;

namespace {

constexpr double kBadgeGrid = 100;

constexpr Color kIcing = Color::hex(0xff5c8a);
constexpr Color kIcingLight = Color::hex(0xff8fb0);
constexpr Color kSponge = Color::hex(0xfff3e3);
constexpr Color kSpongeShade = Color::hex(0xf3d9bb);
constexpr Color kPlate = Color::hex(0xe9edf5);
constexpr Color kCandles[] = { Color::hex(0x4aa8ff), Color::hex(0xffd34d), Color::hex(0x54d38a) };

void addFlame(cairo_t* context, Point base, double height)
{
    double const width = height * 0.36;
    cairo_move_to(context, base.x, base.y - height);
    cairo_curve_to(context, base.x + width * 0.5, base.y - height * 0.6, base.x + width,
        base.y - height * 0.45, base.x + width, base.y - height * 0.28);
    cairo_curve_to(context, base.x + width, base.y + height * 0.08, base.x - width, base.y + height * 0.08,
        base.x - width, base.y - height * 0.28);
    cairo_curve_to(context, base.x - width, base.y - height * 0.45, base.x - width * 0.5,
        base.y - height * 0.6, base.x, base.y - height);
    cairo_close_path(context);
}

// Icing along the top of a tier: straight above, running down in drops below.
void addIcing(cairo_t* context, Rect const& tier, int drops)
{
    double const step = tier.width / drops;
    double const radius = std::min(tier.height * 0.24, 6.0);
    cairo_new_sub_path(context);
    cairo_move_to(context, tier.x, tier.y + radius);
    cairo_curve_to(context, tier.x, tier.y, tier.x, tier.y, tier.x + radius, tier.y);
    cairo_line_to(context, tier.maxX() - radius, tier.y);
    cairo_curve_to(context, tier.maxX(), tier.y, tier.maxX(), tier.y, tier.maxX(), tier.y + radius);
    cairo_line_to(context, tier.maxX(), tier.y + tier.height * 0.34);
    for (int i = drops - 1; i >= 0; --i) {
        double const x = tier.x + i * step;
        double const depth = tier.height * (i % 2 == 0 ? 0.36 : 0.24);
        double const y = tier.y + tier.height * 0.34;
        cairo_curve_to(context, x + step, y + depth * 1.3, x, y + depth * 1.3, x, y);
    }
    cairo_close_path(context);
}

void addCakeOutline(cairo_t* context)
{
    addRoundedRect(context, { 10, 55, 80, 34 }, 7);
    addRoundedRect(context, { 24, 34, 52, 30 }, 7);
    addRoundedRect(context, { 5, 84, 90, 9 }, 4.5);
    for (double const x : { 36.0, 50.0, 64.0 }) {
        addRoundedRect(context, { x - 3, 19, 6, 20 }, 2);
        addFlame(context, { x, 18 }, 13);
    }
}

}   // namespace

Bitmap birthdayCake(Size points, double scale)
{
    Bitmap const bitmap = Bitmap::withPoints(points, scale);
    Context const owner = bitmap.newContext();
    cairo_t* const context = owner.get();
    cairo_scale(context, points.width / kBadgeGrid, points.height / kBadgeGrid);

    // A white rim as stickers have, so that the cake stands off any photo.
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    addCakeOutline(context);
    setColor(context, Color::white());
    cairo_fill_preserve(context);
    stroke(context, Color::white(), 8);

    for (int i = 0; i < 3; ++i) {
        double const x = 36 + i * 14.0;
        addRoundedRect(context, { x - 3, 19, 6, 20 }, 2);
        fill(context, kCandles[i]);
        addRoundedRect(context, { x - 3, 25, 6, 3.4 }, 0);
        fill(context, Color::white(1, 0.75));
        addFlame(context, { x, 18 }, 13);
        fill(context, Color::hex(0xff9f1c));
        addFlame(context, { x, 17.4 }, 7);
        fill(context, Color::hex(0xffe27a));
    }
    struct Tier {
        Rect rect;
        int drops;
        Color icing;
    };
    Tier const tiers[] = { { { 10, 55, 80, 34 }, 8, kIcing }, { { 24, 34, 52, 27 }, 5, kIcingLight } };
    for (Tier const& tier : tiers) {
        addRoundedRect(context, tier.rect, 6);
        fill(context, kSponge);
        addRect(context,
            { tier.rect.x, tier.rect.maxY() - tier.rect.height * 0.2, tier.rect.width,
                tier.rect.height * 0.2 });
        fill(context, kSpongeShade);
        addIcing(context, tier.rect, tier.drops);
        fill(context, tier.icing);
    }
    addRoundedRect(context, { 5, 84, 90, 9 }, 4.5);
    fill(context, kPlate);
    addRoundedRect(context, { 9, 88.5, 82, 2 }, 1);
    fill(context, Color::hex(0xc9d1e0));
    return bitmap;
}

}   // namespace phone::art
