#include "phone/graphics/blur.hpp"

#include "phone/graphics/path.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace phone::graphics {

namespace {

int channel(Bitmap const& bitmap, int x, int y, int shift)
{
    return static_cast<int>((bitmap.row(y)[x] >> shift) & 0xff);
}

Bitmap plain(int width, int height, Color color, double scale = 1)
{
    Bitmap const bitmap = Bitmap::withPixels(width, height, scale);
    Context const context = bitmap.newContext();
    setColor(context.get(), color);
    cairo_paint(context.get());
    return bitmap;
}

// Black left of the middle, white right of it.
Bitmap edge(int width, int height, double scale = 1)
{
    Bitmap const bitmap = plain(width, height, Color::black(), scale);
    Context const context = bitmap.newContext();
    addRect(context.get(), { width / scale / 2, 0, width / scale, height / scale });
    fill(context.get(), Color::white());
    return bitmap;
}

constexpr BlurStyle kPlain { 8, 1, { 0, 0, 0, 0 } };

}   // namespace

TEST(Blur, LeavesAnEvenColourAsItIs)
{
    Bitmap const bitmap = plain(64, 64, Color::hex(0x6496c8));
    Context const context = bitmap.newContext();

    addRoundedRect(context.get(), { 8, 8, 48, 48 }, 10);
    blurBeneathPath(context.get(), kPlain);

    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            EXPECT_NEAR(channel(bitmap, x, y, 16), 0x64, 1);
            EXPECT_NEAR(channel(bitmap, x, y, 0), 0xc8, 1);
        }
    }
}

TEST(Blur, TurnsAnEdgeIntoTheGaussiansIntegral)
{
    for (double const sigma : { 1.5, 4.0, 8.0, 20.0 }) {
        Bitmap const bitmap = edge(240, 40);
        Context const context = bitmap.newContext();

        addRect(context.get(), { 0, 0, 240, 40 });
        blurBeneathPath(context.get(), { sigma, 1, { 0, 0, 0, 0 } });

        for (double const offset : { -1.0, -0.5, 0.0, 0.5, 1.0 }) {
            int const x = 120 + static_cast<int>(std::lround(offset * sigma));
            double const expected = 0.5 * (1 + std::erf((x + 0.5 - 120) / (sigma * std::sqrt(2))));
            EXPECT_NEAR(channel(bitmap, x, 20, 8) / 255.0, expected, 0.035) << sigma << " at " << offset;
        }
    }
}

TEST(Blur, SigmaCountsInPoints)
{
    Bitmap const once = edge(120, 40, 1);
    Bitmap const thrice = edge(360, 120, 3);
    for (Bitmap const& bitmap : { once, thrice }) {
        Context const context = bitmap.newContext();
        addRect(context.get(), bitmap.bounds());
        blurBeneathPath(context.get(), kPlain);
    }

    for (int x = 40; x < 80; x += 4)
        EXPECT_NEAR(channel(once, x, 20, 8), channel(thrice, x * 3 + 1, 60, 8), 5);
}

TEST(Blur, StaysInsideThePath)
{
    Bitmap const bitmap = edge(100, 100);
    Context const context = bitmap.newContext();

    addCircle(context.get(), { 50, 50 }, 20);
    blurBeneathPath(context.get(), kPlain);

    EXPECT_EQ(channel(bitmap, 49, 20, 8), 0);
    EXPECT_EQ(channel(bitmap, 51, 20, 8), 255);
    EXPECT_GT(channel(bitmap, 47, 50, 8), 60);
}

TEST(Blur, FollowsARotatedPath)
{
    Bitmap const bitmap = edge(100, 100);
    Context const context = bitmap.newContext();

    cairo_translate(context.get(), 50, 50);
    cairo_rotate(context.get(), 3.14159265358979 / 2);
    addRect(context.get(), { -40, -10, 80, 20 });
    blurBeneathPath(context.get(), kPlain);

    // Upright now: 80 tall and 20 wide.
    EXPECT_GT(channel(bitmap, 48, 15, 8), 60);
    EXPECT_EQ(channel(bitmap, 35, 50, 8), 0);
    EXPECT_EQ(channel(bitmap, 48, 5, 8), 0);
}

TEST(Blur, LaysTheTintOverIt)
{
    Bitmap const bitmap = plain(40, 40, Color::white());
    Context const context = bitmap.newContext();

    addRect(context.get(), { 0, 0, 40, 40 });
    blurBeneathPath(context.get(), { 5, 1, { 0, 0, 0, 0.5 } });

    EXPECT_NEAR(channel(bitmap, 20, 20, 8), 128, 1);
    EXPECT_EQ(channel(bitmap, 20, 20, 24), 255);
}

TEST(Blur, SaturationSpreadsColoursAndKeepsGreys)
{
    Bitmap const grey = plain(40, 40, Color::white(0.5));
    Bitmap const rose = plain(40, 40, Color::hex(0xb08080));
    for (Bitmap const& bitmap : { grey, rose }) {
        Context const context = bitmap.newContext();
        addRect(context.get(), { 0, 0, 40, 40 });
        blurBeneathPath(context.get(), { 5, 1.8, { 0, 0, 0, 0 } });
    }

    EXPECT_NEAR(channel(grey, 20, 20, 16), 128, 1);
    EXPECT_GT(channel(rose, 20, 20, 16) - channel(rose, 20, 20, 8), 0x30 + 20);
}

TEST(Blur, FadesWithAlpha)
{
    Bitmap const bitmap = plain(40, 40, Color::white());
    Context const context = bitmap.newContext();

    addRect(context.get(), { 0, 0, 40, 40 });
    blurBeneathPath(context.get(), { 5, 1, { 0, 0, 0, 1 } }, 0.25);

    EXPECT_NEAR(channel(bitmap, 20, 20, 8), 191, 2);
}

TEST(Blur, WorksInsideAGroup)
{
    Bitmap const bitmap = plain(100, 100, Color::black());
    Context const context = bitmap.newContext();
    addRect(context.get(), { 20, 20, 60, 60 });
    cairo_clip(context.get());   // the group's own surface then begins at (20, 20)

    cairo_push_group(context.get());
    addRect(context.get(), { 50, 0, 50, 100 });
    fill(context.get(), Color::white());
    addRect(context.get(), { 20, 20, 60, 60 });
    blurBeneathPath(context.get(), kPlain);
    cairo_pop_group_to_source(context.get());
    cairo_paint(context.get());

    EXPECT_NEAR(channel(bitmap, 50, 50, 8), 130, 12);
    EXPECT_EQ(channel(bitmap, 10, 50, 8), 0);
}

TEST(Blur, OffTheTargetThereIsNothingToTake)
{
    Bitmap const bitmap = plain(40, 40, Color::white());
    Context const context = bitmap.newContext();

    addRect(context.get(), { 100, 100, 20, 20 });
    Backdrop const backdrop = takeBackdrop(context.get(), kPlain);
    paintBackdrop(context.get(), backdrop);

    EXPECT_FALSE(backdrop.bitmap);
    EXPECT_FALSE(cairo_has_current_point(context.get()));
}

TEST(Blur, KeptBackdropPaintsTheSameAgain)
{
    Bitmap const first = edge(100, 100);
    Bitmap const second = edge(100, 100);
    Context const context = first.newContext();
    addRect(context.get(), { 20, 20, 60, 60 });
    Backdrop const backdrop = takeBackdrop(context.get(), kDarkBlur);

    paintBackdrop(context.get(), backdrop);
    Context const other = second.newContext();
    addRect(other.get(), { 20, 20, 60, 60 });
    paintBackdrop(other.get(), backdrop);

    for (int y = 0; y < 100; ++y)
        EXPECT_TRUE(std::equal(first.row(y), first.row(y) + 100, second.row(y)));
}

TEST(Blurred, KeepsSizeAndScaleAndWeight)
{
    Bitmap const result = blurred(edge(60, 60, 2), 4);

    EXPECT_EQ(result.pixelWidth(), 60);
    EXPECT_EQ(result.scale(), 2);
    EXPECT_EQ(channel(result, 0, 30, 8), 0);
    EXPECT_EQ(channel(result, 59, 30, 8), 255);
    EXPECT_NEAR(channel(result, 29, 30, 8) + channel(result, 30, 30, 8), 255, 2);
    EXPECT_FALSE(blurred({}, 4));
}

}   // namespace phone::graphics
