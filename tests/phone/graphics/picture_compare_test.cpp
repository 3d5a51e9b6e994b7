#include "phone/graphics/picture_compare.hpp"

#include <gtest/gtest.h>

namespace phone::graphics {

namespace {

Bitmap grey(int width, int height, std::uint32_t level)
{
    Bitmap bitmap = Bitmap::withPixels(width, height);
    for (int y = 0; y < height; ++y)
        std::fill_n(bitmap.row(y), width, 0xff000000u | level * 0x010101u);
    bitmap.markDirty();
    return bitmap;
}

}   // namespace

TEST(PictureCompare, FindsNothingBetweenEqualPictures)
{
    PictureDifference const result = comparePictures(grey(5, 4, 90), grey(5, 4, 90));

    EXPECT_TRUE(result.isEqual());
    EXPECT_EQ(result.maxChannelDifference, 0);
    EXPECT_FALSE(result.picture);
}

TEST(PictureCompare, CountsPixelsAndNamesTheirBounds)
{
    Bitmap actual = grey(10, 10, 100);
    actual.row(2)[3] = 0xff640064u;
    actual.row(5)[7] = 0xff646465u;
    actual.markDirty();

    PictureDifference const result = comparePictures(actual, grey(10, 10, 100));

    EXPECT_EQ(result.differingPixels, 2);
    EXPECT_EQ(result.maxChannelDifference, 100);
    EXPECT_EQ(result.differingBounds, (Rect { 3, 2, 5, 4 }));
    EXPECT_EQ(result.picture.row(2)[3], 0xffff0000u);
    EXPECT_NE(result.picture.row(0)[0], 0xffff0000u);
    EXPECT_EQ(result.description(), "2 pixels differ, by at most 100 of 255, within 5 x 4 pixels at (3, 2)");
}

TEST(PictureCompare, AllowsWhatTheToleranceAllows)
{
    PictureDifference const result = comparePictures(grey(3, 3, 100), grey(3, 3, 102), 2);

    EXPECT_TRUE(result.isEqual());
    EXPECT_EQ(result.maxChannelDifference, 2);
    EXPECT_FALSE(comparePictures(grey(3, 3, 100), grey(3, 3, 103), 2).isEqual());
}

TEST(PictureCompare, TellsSizesApart)
{
    PictureDifference const result = comparePictures(grey(3, 3, 0), grey(3, 4, 0));

    EXPECT_FALSE(result.isEqual());
    EXPECT_FALSE(result.sameSize);
    EXPECT_EQ(result.description(), "the pictures differ in size");
    EXPECT_TRUE(comparePictures({}, {}).isEqual());
    EXPECT_FALSE(comparePictures({}, grey(1, 1, 0)).isEqual());
}

}   // namespace phone::graphics
