#include "phone/springboard/clock_text.hpp"
#include "phone/springboard/lock_screen_layout.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace phone {

namespace {

bool isInside(graphics::Rect const& inner, graphics::Rect const& outer)
{
    return inner.x >= outer.x && inner.y >= outer.y && inner.maxX() <= outer.maxX()
        && inner.maxY() <= outer.maxY();
}

}

struct LayoutCase {
    double width, height;
    int major;
};

class LockScreenLayouts : public testing::TestWithParam<LayoutCase> { };

TEST_P(LockScreenLayouts, KeepEverythingOnTheScreen)
{
    auto const [width, height, major] = GetParam();

    LockScreenLayout const layout = lockScreenLayout({ width, height }, { major, 0, 0 });

    for (graphics::Rect const& rect : { layout.statusBar, layout.padlock, layout.time, layout.date,
             layout.list, layout.torch, layout.camera, layout.homeIndicator })
        EXPECT_TRUE(rect.isEmpty() || isInside(rect, layout.bounds))
            << rect.x << ' ' << rect.y << ' ' << rect.width;
    EXPECT_EQ(layout.list.width, std::min(width, height));
    EXPECT_GE(layout.list.height, 270) << "room for the media item and a strip";
    EXPECT_FALSE(isInside(layout.torch, layout.list) && layout.hasHomeIndicator());
}

INSTANTIATE_TEST_SUITE_P(Screens, LockScreenLayouts,
    testing::Values(LayoutCase { 375, 812, 12 }, LayoutCase { 390, 844, 15 }, LayoutCase { 390, 844, 16 },
        LayoutCase { 430, 932, 16 }, LayoutCase { 320, 568, 12 }, LayoutCase { 375, 667, 14 },
        LayoutCase { 414, 736, 16 }, LayoutCase { 844, 390, 16 }, LayoutCase { 667, 375, 12 },
        LayoutCase { 568, 320, 12 }, LayoutCase { 932, 430, 15 }));

TEST(LockScreenLayoutStyles, PutTheDateBelowTheClockUpTo15AndAboveFrom16On)
{
    LockScreenLayout const old = lockScreenLayout({ 390, 844 }, { 15, 4, 0 });
    LockScreenLayout const recent = lockScreenLayout({ 390, 844 }, { 16, 1, 0 });

    EXPECT_GT(old.date.y, old.time.y);
    EXPECT_LT(recent.date.y, recent.time.y);
    EXPECT_EQ(old.timeSize, 90);
    EXPECT_EQ(recent.timeSize, 96);
    EXPECT_EQ(lockScreenLayout({ 375, 812 }, { 12, 4, 0 }).timeSize, 76);
    EXPECT_EQ(lockScreenLayout({ 430, 932 }, { 16, 1, 0 }).timeSize, 102);
}

TEST(ClockText, FollowsLanguageAndTimeZone)
{
    Date const date = Date::since1970(1781775660);   // 18 June 2026, 09:41 UTC

    EXPECT_EQ(lockScreenTime(date, "en", "UTC"), "9:41");
    EXPECT_EQ(lockScreenTime(date, "de", "Europe/Istanbul"), "12:41");
    EXPECT_EQ(lockScreenDate(date, "en", "UTC"), "Thursday, June 18");
    EXPECT_EQ(lockScreenDate(date, "he", "UTC"), "יום חמישי, 18 ביוני");
    EXPECT_EQ(lockScreenDate(date, "ja", "UTC"), "6月18日木曜日");
    EXPECT_EQ(lockScreenDate(date, "zh", "UTC"), "6月18日星期四");
    EXPECT_EQ(lockScreenDate(date, "en", "Pacific/Kiritimati"), "Thursday, June 18");
}

}
