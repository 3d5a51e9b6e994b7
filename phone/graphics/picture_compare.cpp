#include "phone/graphics/picture_compare.hpp"

#include <cstdlib>
#include <sstream>

namespace phone::graphics {

namespace {

int channelDifference(std::uint32_t a, std::uint32_t b)
{
    int largest = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        int const one = static_cast<int>((a >> shift) & 0xff);
        int const other = static_cast<int>((b >> shift) & 0xff);
        largest = std::max(largest, std::abs(one - other));
    }
    return largest;
}

// Grey at a quarter of the contrast, on white.
std::uint32_t paled(std::uint32_t pixel)
{
    unsigned const alpha = pixel >> 24;
    unsigned const sum = ((pixel >> 16) & 0xff) * 3 + ((pixel >> 8) & 0xff) * 6 + (pixel & 0xff);
    unsigned const grey = sum / 10 + (255 - alpha);
    unsigned const pale = 255 - (255 - std::min(grey, 255u)) / 4;
    return 0xff000000u | pale << 16 | pale << 8 | pale;
}

}   // namespace

PictureDifference comparePictures(Bitmap const& actual, Bitmap const& expected, int tolerance)
{
    PictureDifference result;
    result.sameSize =
        actual.pixelWidth() == expected.pixelWidth() && actual.pixelHeight() == expected.pixelHeight();
    if (!result.sameSize || !actual)
        return result;
    int const width = actual.pixelWidth();
    int const height = actual.pixelHeight();
    int left = width;
    int top = height;
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < height; ++y) {
        std::uint32_t const* const one = actual.row(y);
        std::uint32_t const* const other = expected.row(y);
        for (int x = 0; x < width; ++x) {
            if (one[x] == other[x])
                continue;
            int const difference = channelDifference(one[x], other[x]);
            result.maxChannelDifference = std::max(result.maxChannelDifference, difference);
            if (difference <= tolerance)
                continue;
            ++result.differingPixels;
            left = std::min(left, x);
            right = std::max(right, x + 1);
            top = std::min(top, y);
            bottom = std::max(bottom, y + 1);
        }
    }
    if (result.differingPixels == 0)
        return result;
    result.differingBounds = { double(left), double(top), double(right - left), double(bottom - top) };
    result.picture = Bitmap::withPixels(width, height, expected.scale());
    for (int y = 0; y < height; ++y) {
        std::uint32_t const* const one = actual.row(y);
        std::uint32_t const* const other = expected.row(y);
        std::uint32_t* const out = result.picture.row(y);
        for (int x = 0; x < width; ++x)
            out[x] = channelDifference(one[x], other[x]) > tolerance ? 0xffff0000u : paled(other[x]);
    }
    result.picture.markDirty();
    return result;
}

std::string PictureDifference::description() const
{
    if (!sameSize)
        return "the pictures differ in size";
    std::ostringstream text;
    if (differingPixels == 0) {
        text << "equal (largest channel difference " << maxChannelDifference << ")";
    } else {
        text << differingPixels << " pixels differ, by at most " << maxChannelDifference << " of 255, within "
             << differingBounds.width << " x " << differingBounds.height << " pixels at ("
             << differingBounds.x << ", " << differingBounds.y << ")";
    }
    return text.str();
}

}   // namespace phone::graphics
