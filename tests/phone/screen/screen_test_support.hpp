// View trees made by hand, and pixels read back. Classes are defined once a process; no phone is booted.
#pragma once

#include "phone/screen/renderer.hpp"
#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/ui_visual_effect_view.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>

namespace phone::screentest {

struct Pixel {
    int red { 0 };
    int green { 0 };
    int blue { 0 };
    int alpha { 255 };
    friend bool operator==(Pixel const&, Pixel const&) = default;
};

inline std::ostream& operator<<(std::ostream& out, Pixel const& p)
{
    return out << "(" << p.red << ", " << p.green << ", " << p.blue << ", " << p.alpha << ")";
}

inline constexpr Pixel kBlack { 0, 0, 0 };
inline constexpr Pixel kWhite { 255, 255, 255 };
inline constexpr Pixel kRed { 255, 0, 0 };
inline constexpr Pixel kGreen { 0, 255, 0 };
inline constexpr Pixel kBlue { 0, 0, 255 };

// Channels of the bitmap as they lie there, premultiplied.
inline Pixel pixelAt(graphics::Bitmap const& bitmap, int x, int y)
{
    std::uint32_t const word = bitmap.row(y)[x];
    return { int((word >> 16) & 0xff), int((word >> 8) & 0xff), int(word & 0xff), int(word >> 24) };
}

// Within a rounding step or two of eight bits.
inline bool isNear(Pixel const& a, Pixel const& b, int tolerance = 2)
{
    return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance
        && std::abs(a.blue - b.blue) <= tolerance && std::abs(a.alpha - b.alpha) <= tolerance;
}

inline bool isEqual(graphics::Bitmap const& a, graphics::Bitmap const& b)
{
    if (a.pixelWidth() != b.pixelWidth() || a.pixelHeight() != b.pixelHeight())
        return false;
    for (int y = 0; y < a.pixelHeight(); ++y) {
        if (!std::equal(a.row(y), a.row(y) + a.pixelWidth(), b.row(y)))
            return false;
    }
    return true;
}

class ScreenTest : public testing::Test {
protected:
    ScreenTest();
    ~ScreenTest() override;

    static objc::ref<UIView> box(CGRect frame, Pixel color);
    // Upper half red, lower half blue; left edge green, 2 points wide: shows how it lies.
    static objc::ref<DrawnView> compass(CGRect frame);
    static objc::ref<UIVisualEffectView> effect(CGRect frame, NSInteger style);

    // The tree alone over black.
    static graphics::Bitmap drawn(UIView root, CGSize size, double scale = 1);

private:
    objc::ref<objc::handle> m_pool;
};

}
