// The phone drawn around its screen.
#include "phone/graphics/path.hpp"
#include "phone/screen/device_frame.hpp"
#include "tests/phone/screen/screen_test_support.hpp"

namespace phone::screentest {

graphics::Bitmap whiteScreen(graphics::Size size)
{
    auto const bitmap = graphics::Bitmap::withPoints(size, 1);
    auto const context = bitmap.newContext();
    graphics::addRect(context.get(), bitmap.bounds());
    graphics::fill(context.get(), graphics::Color::white());
    return bitmap;
}

int xOf(DeviceFrame const& frame, double part)
{
    return static_cast<int>(frame.screen().x + frame.screen().width * part);
}
int yOf(DeviceFrame const& frame, double part)
{
    return static_cast<int>(frame.screen().y + frame.screen().height * part);
}

TEST(DeviceFrame, RoundsTheDisplayAndLeavesTheCornersOfThePictureEmpty)
{
    DeviceFrame const frame({ 390, 844 }, 1);
    auto const picture = frame.picture(whiteScreen({ 390, 844 }));

    EXPECT_EQ(pixelAt(picture, 0, 0).alpha, 0);
    EXPECT_NE(pixelAt(picture, int(frame.screen().x) + 3, int(frame.screen().y) + 3), kWhite);
    EXPECT_EQ(pixelAt(picture, xOf(frame, 0.5), yOf(frame, 0.5)), kWhite);
}

TEST(DeviceFrame, CutsTheCameraOutAtTheTopOfTheDevice)
{
    DeviceFrame const upright({ 390, 844 }, 1);
    DeviceFrame const right({ 390, 844 }, 3);
    DeviceFrame const left({ 390, 844 }, 4);
    auto const uprightPicture = upright.picture(whiteScreen({ 390, 844 }));
    auto const rightPicture = right.picture(whiteScreen({ 844, 390 }));
    auto const leftPicture = left.picture(whiteScreen({ 844, 390 }));

    EXPECT_EQ(pixelAt(uprightPicture, xOf(upright, 0.5), int(upright.screen().y) + 10), kBlack);
    EXPECT_EQ(pixelAt(uprightPicture, xOf(upright, 0.5), int(upright.screen().maxY()) - 10), kWhite);
    EXPECT_EQ(pixelAt(rightPicture, int(right.screen().x) + 10, yOf(right, 0.5)), kBlack);
    EXPECT_EQ(pixelAt(rightPicture, int(right.screen().maxX()) - 10, yOf(right, 0.5)), kWhite);
    EXPECT_EQ(pixelAt(leftPicture, int(left.screen().maxX()) - 10, yOf(left, 0.5)), kBlack);
}

TEST(DeviceFrame, HasAHomeButtonAndASquareDisplayOnShortPhones)
{
    DeviceFrame const frame({ 375, 667 }, 1);
    auto const picture = frame.picture(whiteScreen({ 375, 667 }));

    EXPECT_EQ(graphics::Display::of({ 375, 667 }).cornerRadius, 0);
    EXPECT_EQ(pixelAt(picture, int(frame.screen().x) + 1, int(frame.screen().y) + 1), kWhite);
    EXPECT_GT(frame.size().height - 667, 120);
}

TEST(DeviceFrame, GivesNoPictureOfNoScreen) { EXPECT_FALSE(DeviceFrame({ 390, 844 }, 1).picture({})); }

}
