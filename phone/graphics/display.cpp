#include "phone/graphics/display.hpp"

namespace phone::graphics {

namespace {

using CutOut = Display::CutOut;

constexpr double kWideNotch = 209;   // up to the 11 Pro
constexpr double kNotch = 162;
constexpr double kIsland = 126;

// Measured radii, by the screen's size.
struct Row {
    Size size;
    Display display;
};
constexpr Row kDisplays[] {
    { { 375, 812 }, { 39, CutOut::notch, kWideNotch } },
    { { 414, 896 }, { 41.5, CutOut::notch, kWideNotch } },
    { { 390, 844 }, { 47.33, CutOut::notch, kNotch } },
    { { 428, 926 }, { 53.33, CutOut::notch, kNotch } },
    { { 393, 852 }, { 55, CutOut::island, kIsland } },
    { { 430, 932 }, { 55, CutOut::island, kIsland } },
};
constexpr Display kOtherTallDisplay { 44, CutOut::notch, kNotch };

}

Display Display::of(Size portrait)
{
    for (Row const& row : kDisplays)
        if (row.size.width == portrait.width && row.size.height == portrait.height)
            return row.display;
    return portrait.height > 2 * portrait.width ? kOtherTallDisplay : Display {};
}

}
