#include "phone/art/art.hpp"
#include "phone/graphics/path.hpp"

namespace phone::art {

using namespace graphics;

namespace {

constexpr int kPeople = 4;           // and the plus sign in the fifth place, as the strip shows five
constexpr double kDiameter = 0.92;   // of the height

// Mid grey shows on light and on dark alike.
constexpr Color kDisc = Color::hex(0x8e8e98, 0.30);
constexpr Color kPerson = Color::hex(0xa4a4b0, 0.42);
constexpr Color kRim = Color::hex(0xb9b9c6, 0.45);

void addHead(cairo_t* context, Point center, double radius)
{
    addEllipse(context, { center.x - radius * 0.33, center.y - radius * 0.56, radius * 0.66, radius * 0.78 });
}

void addShoulders(cairo_t* context, Point center, double radius)
{
    addEllipse(context, { center.x - radius * 0.68, center.y + radius * 0.34, radius * 1.36, radius * 1.4 });
}

}   // namespace

Bitmap emptyListBanner(Size points, double scale)
{
    Bitmap const bitmap = Bitmap::withPoints(points, scale);
    Context const owner = bitmap.newContext();
    cairo_t* const context = owner.get();
    double const radius = points.height * kDiameter / 2;
    double const pitch = points.width / (kPeople + 1);
    for (int i = 0; i <= kPeople; ++i) {
        Point const center { pitch * (i + 0.5), points.height / 2 };
        bool const isPlus = i == kPeople;
        addCircle(context, center, radius);
        fill(context, isPlus ? kDisc.withAlpha(0.18) : kDisc);
        cairo_save(context);
        addCircle(context, center, radius - 1);
        cairo_clip(context);
        if (isPlus) {
            double const arm = radius * 0.42;
            double const half = radius * 0.075;
            addRoundedRect(context, { center.x - arm, center.y - half, 2 * arm, 2 * half }, half);
            addRoundedRect(context, { center.x - half, center.y - arm, 2 * half, 2 * arm }, half);
            fill(context, kPerson.withAlpha(0.85));
        } else {
            addHead(context, center, radius);
            addShoulders(context, center, radius);
            fill(context, kPerson);
        }
        cairo_restore(context);
        addCircle(context, center, radius - 0.6);
        if (isPlus) {
            double const dashes[] = { 4, 3 };
            cairo_set_dash(context, dashes, 2, 0);
        }
        stroke(context, kRim, 1.1);
    }
    return bitmap;
}

}   // namespace phone::art
