#include "phone/uikit/ui_image.hpp"

#include "phone/graphics/image_codec.hpp"
#include "phone/uikit/ui_image_view.hpp"
#include "tests/phone/uikit/core_fixture.hpp"

namespace phone::testing {

namespace {

UIImage solid(int width, int height, graphics::Color color, double scale = 1)
{
    auto bitmap = graphics::Bitmap::withPixels(width, height, scale);
    auto const context = bitmap.newContext();
    cairo_set_source_rgba(context.get(), color.red, color.green, color.blue, color.alpha);
    cairo_paint(context.get());
    return UIImage::of(bitmap);
}

// 0xAARRGGBB
std::uint32_t pixel(UIImage image, int x, int y) { return image.bitmap().row(y)[x]; }

NSData dataOf(std::vector<std::uint8_t> const& bytes)
{
    return objc::cls<"NSData">().send<"dataWithBytes:length:", NSData>(
        static_cast<void const*>(bytes.data()), static_cast<NSUInteger>(bytes.size()));
}

}

class Image : public CoreTest { };

TEST_F(Image, DrawsIntoAContextAtTheScreensScale)
{
    UIImage const red = solid(10, 10, { 1, 0, 0, 1 });

    UIGraphicsBeginImageContextWithOptions({ 50, 20 }, false, 0);
    red.drawInRect(CGRectMake(0, 0, 25, 20));
    UIImage const drawn { UIGraphicsGetImageFromCurrentImageContext() };
    UIGraphicsEndImageContext();

    EXPECT_EQ(drawn.size(), (CGSize { 50, 20 }));
    EXPECT_EQ(drawn.scale(), 3);
    EXPECT_EQ(pixel(drawn, 10, 10), 0xffff0000u);
    EXPECT_EQ(pixel(drawn, 100, 10), 0u);
    EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
}

TEST_F(Image, ClipsToAnEllipse)
{
    UIImage const red = solid(30, 30, { 1, 0, 0, 1 });

    UIGraphicsBeginImageContextWithOptions({ 30, 30 }, false, 1);
    CGContextAddEllipseInRect(UIGraphicsGetCurrentContext(), CGRectMake(0, 0, 30, 30));
    CGContextClip(UIGraphicsGetCurrentContext());
    red.drawInRect(CGRectMake(0, 0, 30, 30));
    UIImage const round { UIGraphicsGetImageFromCurrentImageContext() };
    UIGraphicsEndImageContext();

    EXPECT_EQ(pixel(round, 15, 15), 0xffff0000u);
    EXPECT_EQ(pixel(round, 0, 0), 0u);
    EXPECT_EQ(pixel(round, 29, 29), 0u);
}

TEST_F(Image, ContextsNest)
{
    UIGraphicsBeginImageContextWithOptions({ 4, 4 }, true, 1);
    UIGraphicsBeginImageContextWithOptions({ 2, 2 }, false, 1);
    EXPECT_EQ(UIImage { UIGraphicsGetImageFromCurrentImageContext() }.size().width, 2);
    UIGraphicsEndImageContext();
    UIImage const outer { UIGraphicsGetImageFromCurrentImageContext() };
    UIGraphicsEndImageContext();

    EXPECT_EQ(outer.size().width, 4);
    EXPECT_EQ(pixel(outer, 0, 0), 0xff000000u);
}

TEST_F(Image, NothingComesOfNothing)
{
    UIGraphicsBeginImageContextWithOptions({ 0, 10 }, false, 0);
    EXPECT_EQ(UIGraphicsGetImageFromCurrentImageContext(), nullptr);
    UIGraphicsEndImageContext();
    UIGraphicsEndImageContext();

    EXPECT_FALSE(UIImage::imageWithData({}));
    EXPECT_FALSE(UIImage::imageWithCGImage(nullptr));
    EXPECT_FALSE(UIImage::imageWithContentsOfFile("/var/jb/none.png"_ns));
    EXPECT_EQ(CGImageCreateWithImageInRect(nullptr, {}), nullptr);
    CGImageRelease(nullptr);
    CGContextClip(nullptr);
    UIImage {}.drawInRect({});
}

TEST_F(Image, CutsInPixels)
{
    UIImage const image = solid(40, 20, { 0, 1, 0, 1 }, 2);

    CGImageRef const part = CGImageCreateWithImageInRect(image.CGImage(), CGRectMake(30, 10, 100, 100));
    UIImage const cut = UIImage::imageWithCGImage(part);
    CGImageRelease(part);

    EXPECT_EQ(cut.size(), (CGSize { 10, 10 }));
    EXPECT_EQ(pixel(cut, 0, 0), 0xff00ff00u);
    EXPECT_EQ(CGImageCreateWithImageInRect(image.CGImage(), CGRectMake(50, 0, 5, 5)), nullptr);
}

TEST_F(Image, TellsTheTraceOfWhatItDecodes)
{
    auto const png = graphics::encodePng(solid(3, 2, { 0, 0, 1, 1 }).bitmap());

    EXPECT_EQ(UIImage::imageWithData(dataOf(png)).size(), (CGSize { 3, 2 }));
    EXPECT_FALSE(UIImage::imageWithData(dataOf({ 1, 2, 3 })));

    Json const all = events("decode");
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]["bytes"], png.size());
    EXPECT_EQ(all[0]["ok"], true);
    EXPECT_EQ(all[1]["ok"], false);
}

TEST_F(Image, GivesApplicationsTheirIcons)
{
    UIImage const icon = UIImage::applicationIconImage("com.apple.mobilephone"_ns, 0, 3);

    EXPECT_EQ(icon.size(), (CGSize { 29, 29 }));
    EXPECT_EQ(icon.scale(), 3);
    EXPECT_EQ(icon.imageWithRenderingMode(1).renderingMode(), 1);
    EXPECT_EQ(events("icon")[0]["bundle"], "com.apple.mobilephone");
}

TEST_F(Image, GoesWhereTheContentModeSays)
{
    CGRect const bounds = CGRectMake(0, 0, 100, 50);
    CGSize const image { 20, 20 };

    EXPECT_EQ(imageRect(image, bounds, UIViewContentMode::scaleToFill), bounds);
    EXPECT_EQ(imageRect(image, bounds, UIViewContentMode::scaleAspectFit), CGRectMake(25, 0, 50, 50));
    EXPECT_EQ(imageRect(image, bounds, UIViewContentMode::scaleAspectFill), CGRectMake(0, -25, 100, 100));
    EXPECT_EQ(imageRect(image, bounds, UIViewContentMode::center), CGRectMake(40, 15, 20, 20));
    EXPECT_EQ(imageRect(image, bounds, UIViewContentMode::bottomRight), CGRectMake(80, 30, 20, 20));
}

}
