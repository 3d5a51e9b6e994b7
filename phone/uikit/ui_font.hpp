// UIFont: a face at a size. Immutable. Main thread.
#pragma once

#include "phone/graphics/fonts.hpp"
#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"

// UIFontWeight, as UIKit exports it.
extern "C" {
extern double const UIFontWeightUltraLight;
extern double const UIFontWeightThin;
extern double const UIFontWeightLight;
extern double const UIFontWeightRegular;
extern double const UIFontWeightMedium;
extern double const UIFontWeightSemibold;
extern double const UIFontWeightBold;
extern double const UIFontWeightHeavy;
extern double const UIFontWeightBlack;
}

namespace phone {

struct UIFont : objc::subclass<UIFont, "UIFont", NSObject> {
    using subclass::subclass;

    static UIFont of(graphics::Font font);   // lent
    static UIFont systemFontOfSize(CGFloat size);
    static UIFont systemFontOfSizeWeight(CGFloat size, CGFloat weight);
    static UIFont boldSystemFontOfSize(CGFloat size);
    static UIFont italicSystemFontOfSize(CGFloat size);
    static UIFont monospacedDigitSystemFontOfSize(CGFloat size, CGFloat weight);
    // Nil for a name that the phone does not have.
    static UIFont fontWithName(NSString name, CGFloat size);

    graphics::Font const& font() const;   // from nil: the system font at 17 points

    CGFloat pointSize() const;
    NSString fontName() const;
    NSString familyName() const;
    CGFloat lineHeight() const;
    CGFloat ascender() const;
    CGFloat descender() const;
    CGFloat leading() const;
    CGFloat capHeight() const;
    CGFloat xHeight() const;
    UIFont fontWithSize(CGFloat size) const;
    BOOL isEqual(objc::handle other) const;
    NSUInteger hash() const;
    NSString description() const;
};

void defineUIFont();

}
