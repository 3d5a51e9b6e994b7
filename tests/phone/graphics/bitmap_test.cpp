#include "phone/graphics/bitmap.hpp"

#include "phone/graphics/path.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace phone::graphics {

namespace {

// Each pixel is opaque and names its own column and row.
Bitmap numbered(int width, int height)
{
    Bitmap bitmap = Bitmap::withPixels(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            bitmap.row(y)[x] = 0xff000000u | static_cast<std::uint32_t>(x << 8 | y);
    }
    bitmap.markDirty();
    return bitmap;
}

std::uint32_t pixel(Bitmap const& bitmap, int x, int y) { return bitmap.row(y)[x]; }

}   // namespace

TEST(Bitmap, IsMadeInPointsAtItsScaleAndClear)
{
    Bitmap const bitmap = Bitmap::withPoints({ 10.4, 20 }, 3);

    EXPECT_EQ(bitmap.pixelWidth(), 31);
    EXPECT_EQ(bitmap.pixelHeight(), 60);
    EXPECT_DOUBLE_EQ(bitmap.size().height, 20);
    EXPECT_EQ(pixel(bitmap, 30, 59), 0u);
}

TEST(Bitmap, KeepsAtLeastOnePixel) { EXPECT_EQ(Bitmap::withPoints({ 0.1, 0.1 }, 1).pixelWidth(), 1); }

TEST(Bitmap, RefusesAbsurdSizes)
{
    double const nan = std::nan("");
    EXPECT_FALSE(Bitmap::withPoints({ 0, 10 }, 1));
    EXPECT_FALSE(Bitmap::withPoints({ -5, 10 }, 1));
    EXPECT_FALSE(Bitmap::withPoints({ nan, 10 }, 1));
    EXPECT_FALSE(Bitmap::withPoints({ 10, 10 }, nan));
    EXPECT_FALSE(Bitmap::withPoints({ 10, 10 }, 0));
    EXPECT_FALSE(Bitmap::withPoints({ 1e300, 1e300 }, 1e300));
    EXPECT_FALSE(Bitmap::withPixels(kMaxPixelSide + 1, 1));
    EXPECT_FALSE(Bitmap::withPixels(kMaxPixelSide, kMaxPixelSide));
    EXPECT_FALSE(isAcceptablePixelSize(std::numeric_limits<std::int64_t>::max(), 2));
}

TEST(Bitmap, NoneAnswersZeroToEverything)
{
    Bitmap const none;

    EXPECT_FALSE(none);
    EXPECT_EQ(none.pixelWidth(), 0);
    EXPECT_EQ(none.size(), Size {});
    EXPECT_EQ(none.pixels(), nullptr);
    EXPECT_EQ(none.newContext(), nullptr);
    EXPECT_FALSE(none.isOpaque());
    EXPECT_FALSE(none.copy());
    EXPECT_FALSE(tinted(none, Color::black()));
    EXPECT_FALSE(resized(none, { 4, 4 }, 1));
    EXPECT_FALSE(mirrored(none));
    none.clear();
    none.markDirty();
}

TEST(Bitmap, CopiesShareTheirPixelsAndCopyDoesNot)
{
    Bitmap const original = numbered(4, 4);
    Bitmap const shared = original;
    Bitmap separate = original.copy();

    separate.row(0)[0] = 0xffffffffu;

    EXPECT_EQ(shared, original);
    EXPECT_EQ(shared.pixels(), original.pixels());
    EXPECT_EQ(pixel(original, 0, 0), 0xff000000u);
    EXPECT_FALSE(separate == original);
}

TEST(Bitmap, ContextCountsInPoints)
{
    Bitmap const bitmap = Bitmap::withPoints({ 10, 10 }, 2);
    Context const context = bitmap.newContext();

    addRect(context.get(), { 5, 0, 5, 10 });
    fill(context.get(), Color::hex(0xff0000));

    EXPECT_EQ(pixel(bitmap, 9, 5), 0u);
    EXPECT_EQ(pixel(bitmap, 10, 5), 0xffff0000u);
}

TEST(Bitmap, TellsWhetherItIsOpaque)
{
    Bitmap bitmap = numbered(3, 3);
    EXPECT_TRUE(bitmap.isOpaque());

    bitmap.row(2)[2] = 0xfe000000u;

    EXPECT_FALSE(bitmap.isOpaque());
}

TEST(Bitmap, DrawsOnMemoryOfOthers)
{
    std::uint32_t memory[4] {};
    Bitmap const bitmap = Bitmap::overMemory(reinterpret_cast<std::uint8_t*>(memory), 2, 2, 8, 1);

    addRect(bitmap.newContext().get(), { 0, 0, 0, 0 });
    Context context = bitmap.newContext();
    addRect(context.get(), { 1, 1, 1, 1 });
    fill(context.get(), Color::white());
    cairo_surface_flush(bitmap.surface());

    EXPECT_EQ(memory[3], 0xffffffffu);
    EXPECT_EQ(memory[0], 0u);
}

TEST(Cropped, CutsOutThePixelsAsked)
{
    Bitmap const part = cropped(numbered(8, 8).withScale(2), { 2, 3, 4, 2 });

    EXPECT_EQ(part.pixelWidth(), 4);
    EXPECT_EQ(part.pixelHeight(), 2);
    EXPECT_EQ(part.scale(), 2);
    EXPECT_EQ(pixel(part, 0, 0), 0xff000203u);
    EXPECT_EQ(pixel(part, 3, 1), 0xff000504u);
}

TEST(Cropped, GrowsToWholePixelsAndStopsAtTheEdges)
{
    Bitmap const grown = cropped(numbered(8, 8), { 2.6, 2.6, 2, 2 });
    Bitmap const clamped = cropped(numbered(8, 8), { -5, 6, 100, 1e9 });

    EXPECT_EQ(grown.pixelWidth(), 3);
    EXPECT_EQ(pixel(grown, 0, 0), 0xff000202u);
    EXPECT_EQ(clamped.pixelWidth(), 8);
    EXPECT_EQ(clamped.pixelHeight(), 2);
}

TEST(Cropped, IsNoneWhenNothingIsLeft)
{
    Bitmap const bitmap = numbered(8, 8);
    double const nan = std::nan("");
    double const infinity = std::numeric_limits<double>::infinity();

    EXPECT_FALSE(cropped(bitmap, { 8, 0, 4, 4 }));
    EXPECT_FALSE(cropped(bitmap, { -4, 0, 4, 4 }));
    EXPECT_FALSE(cropped(bitmap, { 1, 1, 0, 4 }));
    EXPECT_FALSE(cropped(bitmap, { 1, 1, -1, 4 }));
    EXPECT_FALSE(cropped(bitmap, { nan, 1, 2, 2 }));
    EXPECT_FALSE(cropped(bitmap, { 1, 1, nan, 2 }));
    EXPECT_FALSE(cropped(bitmap, { -infinity, 0, infinity, 2 }));
    EXPECT_FALSE(cropped({}, { 0, 0, 1, 1 }));
}

TEST(Tinted, KeepsTheAlphaAndTakesTheColour)
{
    Bitmap bitmap = Bitmap::withPixels(2, 1);
    bitmap.row(0)[0] = 0xff123456u;
    bitmap.row(0)[1] = 0x80402010u;
    bitmap.markDirty();

    Bitmap const result = tinted(bitmap, Color::hex(0x0000ff));

    EXPECT_EQ(pixel(result, 0, 0), 0xff0000ffu);
    EXPECT_EQ(pixel(result, 1, 0), 0x80000080u);
}

TEST(Mirrored, SwapsLeftAndRight)
{
    Bitmap const result = mirrored(numbered(5, 2));

    EXPECT_EQ(pixel(result, 0, 1), 0xff000401u);
    EXPECT_EQ(pixel(result, 4, 0), 0xff000000u);
}

TEST(Resized, AveragesWhatItShrinks)
{
    Bitmap board = Bitmap::withPixels(64, 64);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x)
            board.row(y)[x] = (x + y) % 2 ? 0xffffffffu : 0xff000000u;
    }
    board.markDirty();

    Bitmap const small = resized(board, { 8, 8 }, 1);

    EXPECT_EQ(small.pixelWidth(), 8);
    EXPECT_NEAR(static_cast<int>(pixel(small, 4, 4) & 0xff), 128, 12);
}

TEST(DrawBitmap, FillsTheRectToItsEdgesAndNotBeyond)
{
    Bitmap const source = Bitmap::withPixels(2, 2);
    Context const paint = source.newContext();
    setColor(paint.get(), Color::hex(0x00ff00));
    cairo_paint(paint.get());
    Bitmap const target = Bitmap::withPixels(20, 20);

    drawBitmap(target.newContext().get(), source, { 5, 5, 10, 10 });

    EXPECT_EQ(pixel(target, 5, 5), 0xff00ff00u);
    EXPECT_EQ(pixel(target, 14, 14), 0xff00ff00u);
    EXPECT_EQ(pixel(target, 4, 5), 0u);
    EXPECT_EQ(pixel(target, 15, 14), 0u);
}

TEST(DrawBitmap, FadesWithAlphaAndIgnoresNone)
{
    Bitmap const target = Bitmap::withPixels(4, 4);
    Context const context = target.newContext();

    drawBitmap(context.get(), {}, { 0, 0, 4, 4 });
    drawBitmap(context.get(), numbered(4, 4), { 0, 0, 4, 4 }, 0.5);

    EXPECT_NEAR(pixel(target, 2, 2) >> 24, 128u, 1);
}

}   // namespace phone::graphics
