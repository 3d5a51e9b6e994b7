#include "phone/graphics/image_codec.hpp"

#include "phone/graphics/path.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>
#include <webp/encode.h>
#ifdef PHONE_GRAPHICS_TEST_HAS_HEIF
#    include <libheif/heif.h>
#endif

namespace phone::graphics {

namespace {

using Bytes = std::vector<std::uint8_t>;

// Red at the top left, green at the top right, blue at the bottom left, white at the bottom right.
Bitmap quarters(int width, int height)
{
    Bitmap const bitmap = Bitmap::withPixels(width, height);
    Context const context = bitmap.newContext();
    double const x = width / 2.0;
    double const y = height / 2.0;
    addRect(context.get(), { 0, 0, x, y });
    fill(context.get(), Color::hex(0xff0000));
    addRect(context.get(), { x, 0, x, y });
    fill(context.get(), Color::hex(0x00ff00));
    addRect(context.get(), { 0, y, x, y });
    fill(context.get(), Color::hex(0x0000ff));
    addRect(context.get(), { x, y, x, y });
    fill(context.get(), Color::white());
    return bitmap;
}

// 'r', 'g', 'b' or 'w', whichever the pixel is nearest to; the four corners in reading order.
char nearestColor(std::uint32_t pixel)
{
    bool const red = ((pixel >> 16) & 0xff) > 128;
    bool const green = ((pixel >> 8) & 0xff) > 128;
    bool const blue = (pixel & 0xff) > 128;
    if (red && green && blue)
        return 'w';
    if (red != green && red != blue)
        return green ? '?' : 'r';
    return green ? 'g' : 'b';
}

std::string corners(Bitmap const& bitmap)
{
    int const right = bitmap.pixelWidth() - 2;
    int const bottom = bitmap.pixelHeight() - 2;
    return { nearestColor(bitmap.row(1)[1]), nearestColor(bitmap.row(1)[right]),
        nearestColor(bitmap.row(bottom)[1]), nearestColor(bitmap.row(bottom)[right]) };
}

// A JPEG with an EXIF block naming the orientation, put behind the SOI marker.
Bytes withOrientation(Bytes jpeg, int orientation, bool isBigEndian)
{
    Bytes exif { 0xff, 0xe1, 0x00, 34, 'E', 'x', 'i', 'f', 0, 0 };
    Bytes const tiff = isBigEndian ? Bytes { 'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 0x01, 0x12, 0, 3, 0, 0, 0, 1,
        0, static_cast<std::uint8_t>(orientation), 0, 0, 0, 0, 0, 0 }
                                   : Bytes { 'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 0x01, 3, 0, 1, 0, 0, 0,
                                         static_cast<std::uint8_t>(orientation), 0, 0, 0, 0, 0, 0, 0 };
    exif.insert(exif.end(), tiff.begin(), tiff.end());
    jpeg.insert(jpeg.begin() + 2, exif.begin(), exif.end());
    return jpeg;
}

Bytes webp(Bitmap const& bitmap)
{
    std::uint8_t* data = nullptr;
    std::size_t const size = WebPEncodeLosslessBGRA(
        bitmap.pixels(), bitmap.pixelWidth(), bitmap.pixelHeight(), static_cast<int>(bitmap.stride()), &data);
    Bytes bytes(data, data + size);
    WebPFree(data);
    return bytes;
}

Bytes pngHeader(std::uint32_t width, std::uint32_t height)
{
    Bytes bytes { 0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R' };
    for (std::uint32_t const side : { width, height }) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<std::uint8_t>(side >> shift));
    }
    bytes.insert(bytes.end(), { 8, 6, 0, 0, 0, 0, 0, 0, 0 });
    return bytes;
}

void expectSurvivesDamage(Bytes const& good, std::size_t step)
{
    for (std::size_t length = 0; length < good.size(); length += step) {
        auto const image = decodeImage(std::span(good).first(length));
        if (image) {
            EXPECT_GT(image->bitmap.pixelWidth(), 0);
        }
    }
    std::uint32_t state = 12345;
    for (int round = 0; round < 300; ++round) {
        Bytes bad = good;
        for (int i = 0; i < 4; ++i) {
            state = state * 1664525 + 1013904223;
            bad[(state >> 8) % bad.size()] = static_cast<std::uint8_t>(state >> 3);
        }
        auto const image = decodeImage(bad);
        if (image) {
            EXPECT_TRUE(isAcceptablePixelSize(image->bitmap.pixelWidth(), image->bitmap.pixelHeight()));
        }
    }
}

}   // namespace

TEST(ImageCodec, PngComesBackToThePixel)
{
    Bitmap bitmap = quarters(13, 9);
    bitmap.row(4)[4] = 0x80400000u;   // translucent
    bitmap.row(5)[5] = 0;
    bitmap.markDirty();

    Bitmap const back = decodeUpright(encodePng(bitmap), 2);

    ASSERT_TRUE(back);
    EXPECT_EQ(back.scale(), 2);
    for (int y = 0; y < 9; ++y)
        EXPECT_TRUE(std::equal(bitmap.row(y), bitmap.row(y) + 13, back.row(y))) << y;
}

TEST(ImageCodec, OpaquePngHasNoAlphaChannelAndTheSameBytesEachTime)
{
    Bytes const one = encodePng(quarters(14, 8));

    EXPECT_EQ(one[25], 2);   // colour type: RGB
    EXPECT_EQ(one, encodePng(quarters(14, 8)));
}

TEST(ImageCodec, JpegComesBackNearly)
{
    Bytes const data = encodeJpeg(quarters(64, 32), 95);

    Bitmap const back = decodeUpright(data);

    EXPECT_EQ(imageFormat(data), ImageFormat::jpeg);
    EXPECT_EQ(back.size(), (Size { 64, 32 }));
    EXPECT_EQ(corners(back), "rgbw");
    EXPECT_TRUE(back.isOpaque());
}

TEST(ImageCodec, JpegPutsTransparencyOnWhite)
{
    Bitmap const back = decodeUpright(encodeJpeg(Bitmap::withPixels(8, 8), 90));

    EXPECT_EQ(back.row(4)[4], 0xffffffffu);
}

TEST(ImageCodec, ExifOrientationTurnsThePicture)
{
    // What the stored quarters look like when shown as each orientation says.
    constexpr char const* kShown[] = { "rgbw", "grwb", "wbgr", "bwrg", "rbgw", "brwg", "wgbr", "gwrb" };
    Bytes const jpeg = encodeJpeg(quarters(64, 32), 95);
    for (int orientation = 1; orientation <= 8; ++orientation) {
        for (bool const isBigEndian : { false, true }) {
            Bytes const data = withOrientation(jpeg, orientation, isBigEndian);
            auto const stored = decodeImage(data);
            Bitmap const shown = decodeUpright(data);

            ASSERT_TRUE(stored);
            EXPECT_EQ(stored->orientation, orientation);
            EXPECT_EQ(corners(stored->bitmap), "rgbw");
            EXPECT_EQ(corners(shown), kShown[orientation - 1]) << orientation;
            EXPECT_EQ(shown.pixelWidth(), orientation < 5 ? 64 : 32);
        }
    }
}

TEST(ImageCodec, NonsensicalOrientationIsUpright)
{
    Bytes const jpeg = encodeJpeg(quarters(64, 32), 95);

    EXPECT_EQ(decodeImage(withOrientation(jpeg, 0, true))->orientation, 1);
    EXPECT_EQ(decodeImage(withOrientation(jpeg, 9, true))->orientation, 1);
}

TEST(ImageCodec, WebpComesBackToThePixel)
{
    Bitmap const bitmap = quarters(20, 10);
    Bytes const data = webp(bitmap);

    Bitmap const back = decodeUpright(data);

    EXPECT_EQ(imageFormat(data), ImageFormat::webp);
    ASSERT_TRUE(back);
    for (int y = 0; y < 10; ++y)
        EXPECT_TRUE(std::equal(bitmap.row(y), bitmap.row(y) + 20, back.row(y))) << y;
}

TEST(ImageCodec, TellsTheSizeWithoutDecoding)
{
    EXPECT_EQ(imagePixelSize(encodePng(quarters(30, 20))), (Size { 30, 20 }));
    EXPECT_EQ(imagePixelSize(encodeJpeg(quarters(30, 20), 80)), (Size { 30, 20 }));
    EXPECT_EQ(imagePixelSize(webp(quarters(30, 20))), (Size { 30, 20 }));
    EXPECT_FALSE(imagePixelSize(Bytes { 'G', 'I', 'F' }));
}

TEST(ImageCodec, RefusesPicturesOfAbsurdSize)
{
    EXPECT_FALSE(decodeImage(pngHeader(2'000'000'000, 2'000'000'000)));
    EXPECT_FALSE(decodeImage(pngHeader(16384, 16384)));
    EXPECT_FALSE(decodeImage(pngHeader(0, 10)));
    Bytes jpeg = encodeJpeg(quarters(64, 32), 80);
    for (std::size_t i = 0; i + 9 < jpeg.size(); ++i) {
        if (jpeg[i] == 0xff && jpeg[i + 1] == 0xc0) {
            jpeg[i + 5] = jpeg[i + 6] = jpeg[i + 7] = jpeg[i + 8] = 0xff;
            break;
        }
    }
    EXPECT_EQ(imagePixelSize(jpeg), std::nullopt);
    EXPECT_FALSE(decodeImage(jpeg));
}

TEST(ImageCodec, UnknownAndEmptyDataIsNone)
{
    Bytes const text { 'n', 'o', ' ', 'p', 'i', 'c', 't', 'u', 'r', 'e' };

    EXPECT_FALSE(decodeImage({}));
    EXPECT_FALSE(decodeImage(text));
    EXPECT_FALSE(decodeUpright(text));
    EXPECT_TRUE(encodePng({}).empty());
    EXPECT_TRUE(encodeJpeg({}, 90).empty());
    EXPECT_FALSE(upright({}));
}

TEST(ImageCodec, CutOffJpegShowsWhatIsThere)
{
    Bytes const data = encodeJpeg(quarters(256, 256), 95);

    auto const image = decodeImage(std::span(data).first(data.size() * 3 / 4));

    ASSERT_TRUE(image);
    EXPECT_EQ(nearestColor(image->bitmap.row(10)[10]), 'r');
}

TEST(ImageCodec, SurvivesDamagedPng) { expectSurvivesDamage(encodePng(quarters(40, 40)), 3); }
TEST(ImageCodec, SurvivesDamagedJpeg)
{
    expectSurvivesDamage(withOrientation(encodeJpeg(quarters(40, 40), 90), 6, true), 7);
}
TEST(ImageCodec, SurvivesDamagedWebp) { expectSurvivesDamage(webp(quarters(40, 40)), 1); }

TEST(ImageCodec, FilesAreWrittenAndRead)
{
    auto const folder =
        std::filesystem::temp_directory_path() / ("graphics_test." + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    std::string const path = folder / "picture.png";

    EXPECT_TRUE(writePngFile(quarters(8, 8), path));
    EXPECT_EQ(corners(readImageFile(path)), "rgbw");
    EXPECT_FALSE(readImageFile(folder / "absent.png"));
    EXPECT_FALSE(readImageFile(folder));
    EXPECT_FALSE(writePngFile(quarters(8, 8), folder / "absent" / "picture.png"));
    EXPECT_FALSE(writePngFile({}, path));

    std::filesystem::remove_all(folder);
}

#ifdef PHONE_GRAPHICS_TEST_HAS_HEIF

namespace {

heif_error appendBytes(heif_context*, void const* data, std::size_t size, void* bytes)
{
    auto const* const start = static_cast<std::uint8_t const*>(data);
    static_cast<Bytes*>(bytes)->assign(start, start + size);
    return { heif_error_Ok, heif_suberror_Unspecified, "" };
}

Bytes heif(Bitmap const& bitmap)
{
    heif_context* const file = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    Bytes bytes;
    if (heif_context_get_encoder_for_format(file, heif_compression_HEVC, &encoder).code == heif_error_Ok) {
        heif_image* image = nullptr;
        heif_image_create(bitmap.pixelWidth(), bitmap.pixelHeight(), heif_colorspace_RGB,
            heif_chroma_interleaved_RGB, &image);
        heif_image_add_plane(image, heif_channel_interleaved, bitmap.pixelWidth(), bitmap.pixelHeight(), 8);
        int stride = 0;
        std::uint8_t* const plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        for (int y = 0; y < bitmap.pixelHeight(); ++y) {
            for (int x = 0; x < bitmap.pixelWidth(); ++x) {
                for (int c = 0; c < 3; ++c)
                    plane[y * stride + x * 3 + c] =
                        static_cast<std::uint8_t>(bitmap.row(y)[x] >> (16 - 8 * c));
            }
        }
        heif_encoder_set_lossy_quality(encoder, 90);
        heif_image_handle* handle = nullptr;
        heif_context_encode_image(file, image, encoder, nullptr, &handle);
        heif_writer writer { 1, appendBytes };
        heif_context_write(file, &writer, &bytes);
        heif_image_handle_release(handle);
        heif_image_release(image);
        heif_encoder_release(encoder);
    }
    heif_context_free(file);
    return bytes;
}

}   // namespace

TEST(ImageCodec, HeifComesBackNearly)
{
    Bytes const data = heif(quarters(64, 64));
    if (data.empty())
        GTEST_SKIP() << "libheif here has no HEVC encoder to make the test picture with";

    EXPECT_EQ(imageFormat(data), ImageFormat::heif);
    EXPECT_TRUE(canDecode(ImageFormat::heif));
    EXPECT_EQ(imagePixelSize(data), (Size { 64, 64 }));
    EXPECT_EQ(corners(decodeUpright(data)), "rgbw");
    expectSurvivesDamage(data, 5);
}

#endif

}   // namespace phone::graphics
