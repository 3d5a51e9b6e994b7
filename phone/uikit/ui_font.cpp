#include "phone/uikit/ui_font.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"

#include <cmath>

double const UIFontWeightUltraLight = phone::graphics::FontWeight::kUltraLight;
double const UIFontWeightThin = phone::graphics::FontWeight::kThin;
double const UIFontWeightLight = phone::graphics::FontWeight::kLight;
double const UIFontWeightRegular = phone::graphics::FontWeight::kRegular;
double const UIFontWeightMedium = phone::graphics::FontWeight::kMedium;
double const UIFontWeightSemibold = phone::graphics::FontWeight::kSemibold;
double const UIFontWeightBold = phone::graphics::FontWeight::kBold;
double const UIFontWeightHeavy = phone::graphics::FontWeight::kHeavy;
double const UIFontWeightBlack = phone::graphics::FontWeight::kBlack;

namespace phone {

namespace {

struct FontState {
    graphics::Font font { graphics::systemFont(17) };
};

}

UIFont UIFont::of(graphics::Font font)
{
    auto made = objc::adopt(UIFont { UIFont::alloc().init().object });
    objc::state<FontState>(made.get()).font = std::move(font);
    return objc::autorelease(std::move(made));
}

graphics::Font const& UIFont::font() const
{
    static graphics::Font const fallback = graphics::systemFont(17);
    return object ? objc::state<FontState>(UIFont { object }).font : fallback;
}

UIFont UIFont::systemFontOfSize(CGFloat size) { return of(graphics::systemFont(size)); }
UIFont UIFont::systemFontOfSizeWeight(CGFloat size, CGFloat weight)
{
    return of(graphics::systemFont(size, weight));
}
UIFont UIFont::boldSystemFontOfSize(CGFloat size)
{
    // The platform's bold system font has the weight semibold.
    return of(graphics::systemFont(size, graphics::FontWeight::kSemibold));
}
UIFont UIFont::italicSystemFontOfSize(CGFloat size) { return of(graphics::italicSystemFont(size)); }
UIFont UIFont::monospacedDigitSystemFontOfSize(CGFloat size, CGFloat weight)
{
    return of(graphics::monospacedDigitSystemFont(size, weight));
}
UIFont UIFont::fontWithName(NSString name, CGFloat size)
{
    auto const known = graphics::fontNamed(toString(name), size);
    return known ? of(*known) : UIFont {};
}

CGFloat UIFont::pointSize() const { return object ? font().size : 0; }
NSString UIFont::fontName() const { return object ? toNSString(font().name) : NSString {}; }
NSString UIFont::familyName() const { return object ? toNSString(font().family) : NSString {}; }
CGFloat UIFont::lineHeight() const { return object ? font().metrics().lineHeight : 0; }
CGFloat UIFont::ascender() const { return object ? font().metrics().ascender : 0; }
CGFloat UIFont::descender() const { return object ? font().metrics().descender : 0; }
CGFloat UIFont::leading() const { return object ? font().metrics().leading : 0; }
CGFloat UIFont::capHeight() const { return object ? font().metrics().capHeight : 0; }
CGFloat UIFont::xHeight() const { return object ? font().metrics().xHeight : 0; }
UIFont UIFont::fontWithSize(CGFloat size) const { return object ? of(font().withSize(size)) : UIFont {}; }

BOOL UIFont::isEqual(objc::handle other) const
{
    UIFont const that = objc::cast<UIFont>(other);
    return that && font() == that.font();
}
NSUInteger UIFont::hash() const
{
    return std::hash<std::string>()(font().name) ^ std::hash<double>()(font().size);
}
NSString UIFont::description() const
{
    char text[64];
    std::snprintf(text, sizeof text, "; font-size: %.2fpt", font().size);
    return toNSString(
        "<UICTFont: font-family: \"" + font().family + "\"; font-name: " + font().name + text + ">");
}

void defineUIFont()
{
    objc::define<UIFont>()
        .state<FontState>()
        .class_method<"systemFontOfSize:", &UIFont::systemFontOfSize>()
        .class_method<"systemFontOfSize:weight:", &UIFont::systemFontOfSizeWeight>()
        .class_method<"boldSystemFontOfSize:", &UIFont::boldSystemFontOfSize>()
        .class_method<"italicSystemFontOfSize:", &UIFont::italicSystemFontOfSize>()
        .class_method<"monospacedDigitSystemFontOfSize:weight:", &UIFont::monospacedDigitSystemFontOfSize>()
        .class_method<"fontWithName:size:", &UIFont::fontWithName>()
        .method<"pointSize", &UIFont::pointSize>()
        .method<"fontName", &UIFont::fontName>()
        .method<"familyName", &UIFont::familyName>()
        .method<"lineHeight", &UIFont::lineHeight>()
        .method<"ascender", &UIFont::ascender>()
        .method<"descender", &UIFont::descender>()
        .method<"leading", &UIFont::leading>()
        .method<"capHeight", &UIFont::capHeight>()
        .method<"xHeight", &UIFont::xHeight>()
        .method<"fontWithSize:", &UIFont::fontWithSize>()
        .method<"isEqual:", &UIFont::isEqual>()
        .method<"hash", &UIFont::hash>()
        .method<"description", &UIFont::description>()
        .install();
}

}
