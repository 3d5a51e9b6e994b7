// Pictures made for the strip, pixel by pixel where it counts, and birthdays.
#include "tests/plugin/strip/strip_fixture.hpp"

#include "phone/kernel/date.hpp"
#include "phone/uikit/ui_image.hpp"

#include <utility>

namespace phone {

namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kGreen = 0xFF00FF00;
constexpr std::uint32_t kBlue = 0xFF0000FF;

// Three stripes of equal width or height, one point a pixel.
UIImage stripes(int width, int height, bool areUpright)
{
    graphics::Bitmap bitmap = graphics::Bitmap::withPixels(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int const part = areUpright ? x * 3 / width : y * 3 / height;
            bitmap.row(y)[x] = part == 0 ? kRed : part == 1 ? kGreen : kBlue;
        }
    bitmap.markDirty();
    return UIImage::of(bitmap);
}

// The pixel at a point.
std::uint32_t at(UIImage image, double x, double y)
{
    graphics::Bitmap const& bitmap = image.bitmap();
    bitmap.pixels();
    return bitmap.row(static_cast<int>(y * bitmap.scale()))[static_cast<int>(x * bitmap.scale())];
}

}

class StripImages : public StripTest, public testing::WithParamInterface<int> {
protected:
    void SetUp() override
    {
        BootOptions booted = options("13.7", { { "isEnabled", false } }, 1);
        booted.scale = GetParam();
        boot(booted);
        m_strip = makeStrip(lockScreenFrame(), record());
    }
    UIImage scaled(UIImage image, CGSize size) const
    {
        return m_strip.send<"scaleImage:toSize:", UIImage>(image, size);
    }
    static void expectSize(UIImage image, double width, double height)
    {
        ASSERT_TRUE(image);
        EXPECT_EQ(image.size().width, width);
        EXPECT_EQ(image.size().height, height);
        EXPECT_EQ(image.scale(), GetParam());
    }

    UIView m_strip;
};

TEST_P(StripImages, CutAWidePhotoRoundInItsMiddle)
{
    UIImage const round = scaled(stripes(100, 50, true), { 50, 50 });
    expectSize(round, 50, 50);
    // Drawn from -25 to 75: the middle stripe is from 8.3 to 41.7.
    EXPECT_EQ(at(round, 25, 25), kGreen);
    EXPECT_EQ(at(round, 3, 25), kRed);
    EXPECT_EQ(at(round, 6, 25), kRed);
    EXPECT_EQ(at(round, 11, 25), kGreen);
    EXPECT_EQ(at(round, 39, 25), kGreen);
    EXPECT_EQ(at(round, 46, 25), kBlue);
    for (auto const& [x, y] : { std::pair { 1, 1 }, { 48, 1 }, { 1, 48 }, { 48, 48 }, { 5, 5 }, { 44, 44 } })
        EXPECT_EQ(at(round, x, y), 0u) << x << ", " << y;
    EXPECT_EQ(at(round, 9, 9) >> 24, 255u);   // just inside the circle
    EXPECT_EQ(at(round, 25, 1), kGreen);
    EXPECT_EQ(at(round, 25, 48), kGreen);
}

TEST_P(StripImages, EnlargeATallPhotoToFill)
{
    UIImage const round = scaled(stripes(20, 40, false), { 50, 50 });
    expectSize(round, 50, 50);
    // Drawn from -25 to 75: stripes meet at 8.3 and 41.7.
    EXPECT_EQ(at(round, 25, 3), kRed);
    EXPECT_EQ(at(round, 25, 25), kGreen);
    EXPECT_EQ(at(round, 25, 46), kBlue);
    EXPECT_EQ(at(round, 3, 25), kGreen);
    EXPECT_EQ(at(round, 47, 25), kGreen);
    EXPECT_EQ(at(round, 3, 3), 0u);
}

TEST_P(StripImages, CutAnEllipseWithoutScaling)
{
    UIImage const round = m_strip.send<"makeImageRound:", UIImage>(stripes(60, 30, true));
    expectSize(round, 60, 30);
    EXPECT_EQ(at(round, 30, 15), kGreen);
    EXPECT_EQ(at(round, 2, 15), kRed);
    EXPECT_EQ(at(round, 57, 15), kBlue);
    EXPECT_EQ(at(round, 30, 1), kGreen);
    for (auto const& [x, y] : { std::pair { 1, 1 }, { 58, 1 }, { 1, 28 }, { 58, 28 }, { 6, 3 } })
        EXPECT_EQ(at(round, x, y), 0u) << x << ", " << y;
}

TEST_P(StripImages, StretchToASizeWithoutKeepingProportions)
{
    UIImage const wide =
        m_strip.send<"imageWithImage:scaledToSize:", UIImage>(stripes(30, 30, true), CGSize { 90, 10 });
    expectSize(wide, 90, 10);
    EXPECT_EQ(at(wide, 0, 0), kRed);
    EXPECT_EQ(at(wide, 15, 5), kRed);
    EXPECT_EQ(at(wide, 45, 5), kGreen);
    EXPECT_EQ(at(wide, 89, 9), kBlue);
}

TEST_P(StripImages, AreCutOutByPixels)
{
    UIImage const part = m_strip.send<"croppIngimageByImageName:toRect:", UIImage>(
        stripes(30, 30, true), CGRect { { 8, 4 }, { 6, 12 } });
    ASSERT_TRUE(part);
    EXPECT_EQ(part.size().width, 6);
    EXPECT_EQ(part.size().height, 12);
    EXPECT_EQ(part.scale(), 1);
    EXPECT_EQ(at(part, 1, 0), kRed);
    EXPECT_EQ(at(part, 2, 0), kGreen);
    EXPECT_FALSE((m_strip.send<"croppIngimageByImageName:toRect:", objc::handle>(
        stripes(30, 30, true), CGRect { { 100, 100 }, { 6, 12 } })));
}

TEST_P(StripImages, AreNoneFromNone)
{
    objc::handle const none;
    EXPECT_FALSE((m_strip.send<"scaleImage:toSize:", objc::handle>(none, CGSize { 50, 50 })));
    EXPECT_FALSE((m_strip.send<"makeImageRound:", objc::handle>(none)));
    EXPECT_FALSE((m_strip.send<"imageWithImage:scaledToSize:", objc::handle>(none, CGSize { 50, 50 })));
    EXPECT_FALSE((m_strip.send<"croppIngimageByImageName:toRect:", objc::handle>(none, CGRect {})));
    // And no context is left open.
    EXPECT_FALSE(UIGraphicsGetCurrentContext());
    scaled(stripes(10, 10, true), { 50, 50 });
    EXPECT_FALSE(UIGraphicsGetCurrentContext());
}

INSTANTIATE_TEST_SUITE_P(EveryScale, StripImages, testing::Values(1, 2, 3),
    [](auto const& info) { return std::to_string(info.param) + "x"; });

class Birthdays : public StripTest {
protected:
    static UIView strip(std::string const& timezone = "UTC")
    {
        BootOptions booted = options("13.7", { { "isEnabled", false } }, 1);
        booted.timezone = timezone;
        boot(booted);
        return makeStrip(lockScreenFrame(), record());
    }
    static objc::handle date(std::string const& text)
    {
        objc::class_handle const cls { objc_getClass("NSDate") };
        return cls.send<"dateWithTimeIntervalSinceReferenceDate:", objc::handle>(
            parseIsoDate(text).value().sinceReference);
    }
    static bool isSameDay(UIView strip, std::string const& a, std::string const& b)
    {
        return strip.send<"isSameDay:otherDay:", BOOL>(date(a), date(b));
    }
};

TEST_F(Birthdays, CountByDayAndMonthInAnyYear)
{
    UIView const view = strip();
    EXPECT_TRUE(isSameDay(view, "2026-06-18T09:00:00Z", "1990-06-18T23:00:00Z"));
    EXPECT_TRUE(isSameDay(view, "2026-06-18T09:00:00Z", "2026-06-18T00:00:00Z"));
    EXPECT_TRUE(isSameDay(view, "2026-06-18T09:00:00Z", "1604-06-18T12:00:00Z"));
    EXPECT_FALSE(isSameDay(view, "2026-06-18T09:00:00Z", "1990-06-17T09:00:00Z"));
    EXPECT_FALSE(isSameDay(view, "2026-06-18T09:00:00Z", "1990-05-18T09:00:00Z"));
    EXPECT_FALSE(isSameDay(view, "2026-06-18T09:00:00Z", "2026-07-18T09:00:00Z"));
    EXPECT_TRUE(isSameDay(view, "2028-02-29T09:00:00Z", "1992-02-29T09:00:00Z"));
    EXPECT_FALSE(isSameDay(view, "2026-02-28T09:00:00Z", "1992-02-29T09:00:00Z"));
    EXPECT_FALSE(isSameDay(view, "2026-03-01T09:00:00Z", "1992-02-29T09:00:00Z"));
    EXPECT_FALSE((view.send<"isSameDay:otherDay:", BOOL>(date("2026-06-18T09:00:00Z"), objc::handle {})));
}

TEST_F(Birthdays, FollowThePhonesTimeZone)
{
    UIView const view = strip("Asia/Tokyo");
    EXPECT_TRUE(isSameDay(view, "2026-06-17T16:00:00Z", "1990-06-18T03:00:00Z"));
    EXPECT_FALSE(isSameDay(view, "2026-06-18T16:00:00Z", "1990-06-18T03:00:00Z"));
}

TEST_F(Birthdays, OfNobodyAreLookedThroughQuietly)
{
    UIView const view = strip();
    view.send<"presentBirthday:">(objc::handle {});
    EXPECT_TRUE(viewsOfClass(view, "CVLButton").empty());
}

}
