// UIColor: a colour, fixed or one that follows the appearance (light, dark). Immutable. Main thread.
#pragma once

#include "phone/graphics/geometry.hpp"
#include "phone/uikit/core_graphics_objects.hpp"
#include "platform/foundation.hpp"

namespace phone {

struct UIColor : objc::subclass<UIColor, "UIColor", NSObject> {
    using subclass::subclass;

    // Components 0 to 1; others are clamped when drawn. Lent.
    static UIColor colorWithRed(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
    static UIColor colorWithWhite(CGFloat white, CGFloat alpha);
    static UIColor of(graphics::Color fixed);
    static UIColor dynamic(graphics::Color light, graphics::Color dark);

    static UIColor clearColor();
    static UIColor blackColor();
    static UIColor whiteColor();
    static UIColor grayColor();
    static UIColor darkGrayColor();
    static UIColor lightGrayColor();
    static UIColor redColor();
    static UIColor greenColor();
    static UIColor blueColor();
    static UIColor systemBlueColor();
    static UIColor systemRedColor();
    static UIColor systemGreenColor();
    static UIColor systemGrayColor();
    static UIColor labelColor();
    static UIColor secondaryLabelColor();
    static UIColor systemBackgroundColor();
    static UIColor secondarySystemBackgroundColor();
    static UIColor separatorColor();

    UIColor initWithRed(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) const;

    // As it is under the present appearance. Clear from nil.
    graphics::Color rgba() const;

    UIColor colorWithAlphaComponent(CGFloat alpha) const;
    CGColorRef CGColor() const;   // lent for as long as the colour lives
    BOOL isEqual(objc::handle other) const;
    NSUInteger hash() const;
    NSString description() const;
    BOOL getComponents(CGFloat* red, CGFloat* green, CGFloat* blue, CGFloat* alpha) const;
};

void defineUIColor();

}
