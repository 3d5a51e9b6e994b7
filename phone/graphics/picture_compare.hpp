// Comparing pictures for golden tests.
#pragma once

#include "phone/graphics/bitmap.hpp"

#include <cstdint>
#include <string>

namespace phone::graphics {

struct PictureDifference {
    bool sameSize { false };              // in pixels; the fields below are zero when false
    int maxChannelDifference { 0 };       // 0 to 255 over alpha and premultiplied colours
    std::int64_t differingPixels { 0 };   // those with any channel off by more than the tolerance
    Rect differingBounds;                 // pixels; empty when none differs
    Bitmap picture;   // the expected one paled, differing pixels in red; none when equal or of other size

    bool isEqual() const { return sameSize && differingPixels == 0; }
    std::string description() const;   // one line: sizes or counts
};

// `tolerance`: channel difference still taken as equal. None equals none, and nothing else.
PictureDifference comparePictures(Bitmap const& actual, Bitmap const& expected, int tolerance = 0);

}   // namespace phone::graphics
