#include "phone/graphics/app_icon.hpp"
#include "phone/graphics/glyphs.hpp"
#include "phone/graphics/picture_compare.hpp"
#include "phone/graphics/wallpaper.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace phone::graphics {

namespace {

constexpr Glyph kAllGlyphs[] = { Glyph::torch, Glyph::camera, Glyph::padlockClosed, Glyph::padlockOpen,
    Glyph::play, Glyph::pause, Glyph::nextTrack, Glyph::previousTrack, Glyph::bell, Glyph::deleteKey,
    Glyph::chevronLeft, Glyph::chevronRight, Glyph::checkmark, Glyph::cross, Glyph::plus, Glyph::person,
    Glyph::magnifier, Glyph::info };

Rect inkBounds(Bitmap const& bitmap)
{
    return comparePictures(bitmap, Bitmap::withPixels(bitmap.pixelWidth(), bitmap.pixelHeight()), 20)
        .differingBounds;
}

std::int64_t alphaSum(Bitmap const& bitmap)
{
    std::int64_t sum = 0;
    for (int y = 0; y < bitmap.pixelHeight(); ++y) {
        for (int x = 0; x < bitmap.pixelWidth(); ++x)
            sum += bitmap.row(y)[x] >> 24;
    }
    return sum;
}

}   // namespace

TEST(Glyphs, FillTheirRectInProportionAndStayInside)
{
    for (Glyph const glyph : kAllGlyphs) {
        Bitmap const bitmap = Bitmap::withPixels(120, 120);
        drawGlyph(bitmap.newContext().get(), glyph, { 10, 10, 100, 100 }, Color::black());
        Rect const ink = inkBounds(bitmap);

        EXPECT_GE(ink.x, 9) << int(glyph);
        EXPECT_GE(ink.y, 9) << int(glyph);
        EXPECT_LE(ink.maxX(), 111) << int(glyph);
        EXPECT_LE(ink.maxY(), 111) << int(glyph);
        EXPECT_NEAR(std::max(ink.width, ink.height), 100, 8) << int(glyph);
        EXPECT_NEAR(ink.width / ink.height, glyphAspect(glyph), 0.12) << int(glyph);
    }
}

TEST(Glyphs, FadeAsOneShapeAlthoughTheirPartsOverlap)
{
    for (Glyph const glyph : kAllGlyphs) {
        Bitmap const bitmap = Bitmap::withPixels(60, 60);
        drawGlyph(bitmap.newContext().get(), glyph, { 5, 5, 50, 50 }, Color::black(0.5));

        std::uint32_t highest = 0;
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 60; ++x)
                highest = std::max(highest, bitmap.row(y)[x] >> 24);
        }
        EXPECT_NEAR(highest, 128u, 1) << int(glyph);
    }
}

TEST(Glyphs, EmptyRectOrClearColourDrawsNothing)
{
    Bitmap const bitmap = Bitmap::withPixels(20, 20);

    drawGlyph(bitmap.newContext().get(), Glyph::bell, { 5, 5, 0, 10 }, Color::black());
    drawGlyph(bitmap.newContext().get(), Glyph::bell, { 5, 5, 10, 10 }, Color::black(0));

    EXPECT_EQ(alphaSum(bitmap), 0);
}

TEST(StatusGlyphs, ShowTheirLevels)
{
    auto ink = [](auto draw) {
        Bitmap const bitmap = Bitmap::withPixels(90, 60);
        draw(bitmap.newContext().get(), Rect { 5, 5, 80, 50 });
        return alphaSum(bitmap);
    };
    for (int level = 0; level < 4; ++level) {
        EXPECT_LT(ink([&](cairo_t* c, Rect r) { drawSignalBars(c, r, level, Color::black()); }),
            ink([&](cairo_t* c, Rect r) { drawSignalBars(c, r, level + 1, Color::black()); }));
        EXPECT_LT(ink([&](cairo_t* c, Rect r) { drawBattery(c, r, level * 0.25, Color::black()); }),
            ink([&](cairo_t* c, Rect r) { drawBattery(c, r, level * 0.25 + 0.25, Color::black()); }));
    }
    for (int arcs = 0; arcs < 3; ++arcs)
        EXPECT_LT(ink([&](cairo_t* c, Rect r) { drawWifi(c, r, arcs, Color::black()); }),
            ink([&](cairo_t* c, Rect r) { drawWifi(c, r, arcs + 1, Color::black()); }));
    EXPECT_EQ(ink([](cairo_t* c, Rect r) { drawBattery(c, r, std::nan(""), Color::black()); }),
        ink([](cairo_t* c, Rect r) { drawBattery(c, r, 0, Color::black()); }));
}

TEST(AppIcons, AreSquaresWithRoundedCornersAndAllDiffer)
{
    constexpr AppIcon kIcons[] = { AppIcon::phone, AppIcon::messages, AppIcon::mail, AppIcon::video,
        AppIcon::calendar, AppIcon::contacts, AppIcon::settings, AppIcon::music, AppIcon::browser };
    for (AppIcon const icon : kIcons) {
        Bitmap const bitmap = appIcon(icon, 60, 2);
        EXPECT_EQ(bitmap.pixelWidth(), 120);
        EXPECT_EQ(bitmap.row(0)[0], 0u);
        EXPECT_EQ(bitmap.row(0)[60] >> 24, 255u);
        EXPECT_EQ(bitmap.row(60)[119] >> 24, 255u);
        for (AppIcon const other : kIcons)
            EXPECT_EQ(comparePictures(bitmap, appIcon(other, 60, 2)).isEqual(), icon == other);
    }
}

TEST(AppIcons, LetterTileFollowsFromNameAndIdentifier)
{
    Bitmap const tile = letterIcon("Notes", "org.example.notes", 60, 2);

    EXPECT_TRUE(comparePictures(tile, letterIcon("Nothing", "org.example.notes", 60, 2)).isEqual());
    EXPECT_FALSE(comparePictures(tile, letterIcon("Maps", "org.example.notes", 60, 2)).isEqual());
    EXPECT_TRUE(letterIcon("", "", 60, 2));
    EXPECT_FALSE(letterIcon("N", "n", 0, 2));
}

TEST(AppIcons, KeepToTheCallersClip)
{
    for (AppIcon const icon : { AppIcon::mail, AppIcon::calendar, AppIcon::browser }) {
        Bitmap const bitmap = Bitmap::withPixels(60, 60);
        Context const context = bitmap.newContext();
        cairo_rectangle(context.get(), 0, 0, 20, 60);
        cairo_clip(context.get());

        drawAppIcon(context.get(), icon, { 0, 0, 60, 60 });

        EXPECT_EQ(inkBounds(bitmap).maxX(), 20);
    }
}

TEST(Wallpaper, IsOpaqueKeptAndTheSameEachTime)
{
    Bitmap const first = wallpaper({ 60, 130 }, 2);
    Bitmap const painted = Bitmap::withPoints({ 60, 130 }, 2);
    paintWallpaper(painted.newContext().get(), painted.bounds(), WallpaperVariant::light);

    EXPECT_EQ(first.pixelWidth(), 120);
    EXPECT_TRUE(first.isOpaque());
    EXPECT_EQ(wallpaper({ 60, 130 }, 2), first);
    EXPECT_TRUE(comparePictures(first, painted).isEqual());
    EXPECT_FALSE(wallpaper({ 0, 130 }, 2));
}

TEST(Wallpaper, DarkVariantIsDarker)
{
    auto brightness = [](Bitmap const& bitmap) {
        std::int64_t sum = 0;
        for (int y = 0; y < bitmap.pixelHeight(); ++y) {
            for (int x = 0; x < bitmap.pixelWidth(); ++x)
                sum += (bitmap.row(y)[x] >> 8) & 0xff;
        }
        return sum;
    };

    EXPECT_LT(brightness(wallpaper({ 60, 130 }, 1, WallpaperVariant::dark)),
        brightness(wallpaper({ 60, 130 }, 1, WallpaperVariant::light)) / 2);
}

}   // namespace phone::graphics
