#include "phone/graphics/path.hpp"

#include "phone/graphics/bitmap.hpp"

#include <functional>
#include <gtest/gtest.h>

namespace phone::graphics {

namespace {

Bitmap filled(std::function<void(cairo_t*)> const& add)
{
    Bitmap const bitmap = Bitmap::withPixels(100, 100);
    Context const context = bitmap.newContext();
    add(context.get());
    fill(context.get(), Color::black());
    return bitmap;
}

// In pixels fully covered.
double area(Bitmap const& bitmap)
{
    double sum = 0;
    for (int y = 0; y < bitmap.pixelHeight(); ++y) {
        for (int x = 0; x < bitmap.pixelWidth(); ++x)
            sum += (bitmap.row(y)[x] >> 24) / 255.0;
    }
    return sum;
}

bool isCovered(Bitmap const& bitmap, int x, int y) { return bitmap.row(y)[x] >> 24 == 255; }

constexpr double kPi = 3.14159265358979;

}   // namespace

TEST(Path, RoundedRectLosesTheAreaOfItsCorners)
{
    Bitmap const bitmap = filled([](cairo_t* context) { addRoundedRect(context, { 10, 10, 80, 60 }, 20); });

    EXPECT_NEAR(area(bitmap), 80 * 60 - (4 - kPi) * 400, 3);
}

TEST(Path, RadiusStopsAtHalfTheShorterSide)
{
    Bitmap const bitmap = filled([](cairo_t* context) { addRoundedRect(context, { 10, 10, 80, 60 }, 500); });

    EXPECT_NEAR(area(bitmap), 20 * 60 + kPi * 900, 8);
}

TEST(Path, RadiusOfZeroOrLessLeavesTheRectangle)
{
    for (double const radius : { 0.0, -4.0 }) {
        EXPECT_EQ(area(filled([radius](cairo_t* context) {
            addRoundedRect(context, { 10, 10, 80, 60 }, radius);
        })),
            4800);
        EXPECT_EQ(area(filled([radius](cairo_t* context) {
            addContinuousRect(context, { 10, 10, 80, 60 }, radius);
        })),
            4800);
    }
}

TEST(Path, CornersCanDiffer)
{
    Bitmap const bitmap = filled([](cairo_t* context) {
        addRoundedRect(context, { 0, 0, 100, 100 }, { 30, 0, 30, 0 });
    });

    EXPECT_FALSE(isCovered(bitmap, 1, 1));
    EXPECT_TRUE(isCovered(bitmap, 99, 0));
    EXPECT_FALSE(isCovered(bitmap, 98, 98));
    EXPECT_TRUE(isCovered(bitmap, 0, 99));
}

TEST(Path, ContinuousCornersAreTheSameAllRound)
{
    Bitmap const bitmap = filled([](cairo_t* context) {
        addContinuousRect(context, { 0, 0, 100, 100 }, 24);
    });

    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 50; ++x) {
            // Cairo's curves are flattened to a tenth of a pixel, and its antialiasing is coarser downwards.
            int const alpha = static_cast<int>(bitmap.row(y)[x] >> 24);
            EXPECT_NEAR(static_cast<int>(bitmap.row(y)[99 - x] >> 24), alpha, 20);
            EXPECT_NEAR(static_cast<int>(bitmap.row(99 - y)[x] >> 24), alpha, 20);

            EXPECT_NEAR(static_cast<int>(bitmap.row(x)[y] >> 24), alpha, 20);
        }
    }
}

TEST(Path, ContinuousCornerReachesFurtherAlongTheSideThanACircle)
{
    Bitmap const continuous = filled([](cairo_t* context) {
        addContinuousRect(context, { 0, 0, 100, 100 }, 24);
    });
    Bitmap const circular = filled([](cairo_t* context) { addRoundedRect(context, { 0, 0, 100, 100 }, 24); });

    // 27 pixels along, past the circle's radius and within 1.6 of it, the side has begun to bend.
    EXPECT_TRUE(isCovered(circular, 27, 0));
    EXPECT_FALSE(isCovered(continuous, 27, 0));
    EXPECT_TRUE(isCovered(continuous, 40, 0));
    EXPECT_NEAR(area(continuous), area(circular), 120);
}

TEST(Path, ContinuousCornerWithoutRoomIsACircle)
{
    Bitmap const continuous = filled([](cairo_t* context) {
        addContinuousRect(context, { 10, 10, 80, 80 }, 40);
    });

    EXPECT_NEAR(area(continuous), kPi * 1600, 10);
}

TEST(Path, EmptyShapesDrawNothing)
{
    EXPECT_EQ(area(filled([](cairo_t* context) {
        addEllipse(context, { 5, 5, 0, 10 });
        addCircle(context, { 50, 50 }, -3);
        addCapsule(context, { 5, 5, 0, 0 });
        addContinuousRect(context, { 5, 5, 0, 20 }, 4);
    })),
        0);
}

}   // namespace phone::graphics
