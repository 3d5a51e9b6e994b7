#include "phone/screen/effect_styles.hpp"

namespace phone {

namespace {

using graphics::BlurStyle;

// The system materials: the platform publishes no numbers, so these are chosen by us to grow denser in even
// steps, between the classic styles in strength.
constexpr BlurStyle kLightMaterials[] {
    { 15, 1.8, { 0.96, 0.96, 0.97, 0.36 } },   // ultra thin
    { 15, 1.8, { 0.96, 0.96, 0.97, 0.52 } },   // thin
    { 15, 1.8, { 0.96, 0.96, 0.97, 0.68 } },   // material
    { 15, 1.8, { 0.96, 0.96, 0.97, 0.82 } },   // thick
    { 15, 1.8, { 0.96, 0.96, 0.97, 0.78 } },   // chrome
};
constexpr BlurStyle kDarkMaterials[] {
    { 15, 1.8, { 0.13, 0.13, 0.14, 0.36 } },
    { 15, 1.8, { 0.13, 0.13, 0.14, 0.52 } },
    { 15, 1.8, { 0.13, 0.13, 0.14, 0.68 } },
    { 15, 1.8, { 0.13, 0.13, 0.14, 0.82 } },
    { 15, 1.8, { 0.10, 0.10, 0.11, 0.78 } },
};

constexpr NSInteger kFirstMaterial = 6;
constexpr NSInteger kMaterials = 5;

}

graphics::BlurStyle blurStyleOf(NSInteger style, bool dark)
{
    switch (style) {
    case 0: return graphics::kExtraLightBlur;
    case 1: return graphics::kLightBlur;
    case 2: return graphics::kDarkBlur;
    case 5: return dark ? kDarkMaterials[3] : graphics::kExtraLightBlur;   // prominent
    default: break;
    }
    if (style < kFirstMaterial || style >= kFirstMaterial + 3 * kMaterials)
        return dark ? kDarkMaterials[2] : graphics::kLightBlur;   // regular
    NSInteger const index = style - kFirstMaterial;
    bool const isDark = index / kMaterials == 0 ? dark : index / kMaterials == 2;
    return (isDark ? kDarkMaterials : kLightMaterials)[index % kMaterials];
}

}
