#include "phone/uikit/ui_color.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"

#include <functional>

namespace phone {

namespace {

using graphics::Color;

struct ColorState {
    Color light {};
    Color dark {};
    CGColorRef pointer { nullptr };
    ~ColorState() { CGColorRelease(pointer); }
};

ColorState& stateOf(UIColor color) { return objc::state<ColorState>(UIColor { color.object }); }

UIColor makeColor(Color light, Color dark)
{
    auto color = objc::adopt(UIColor { UIColor::alloc().init().object });
    stateOf(color).light = light;
    stateOf(color).dark = dark;
    return objc::autorelease(std::move(color));
}

// Made once and kept.
UIColor constant(Color light, Color dark) { return objc::leak(objc::retain(makeColor(light, dark))); }

}

UIColor UIColor::of(Color fixed) { return makeColor(fixed, fixed); }
UIColor UIColor::dynamic(Color light, Color dark) { return makeColor(light, dark); }
UIColor UIColor::colorWithRed(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha)
{
    return of({ red, green, blue, alpha });
}
UIColor UIColor::colorWithWhite(CGFloat white, CGFloat alpha) { return of(Color::white(white, alpha)); }

#define PHONE_FIXED_COLOR(name, value)                                                                       \
    UIColor UIColor::name()                                                                                  \
    {                                                                                                        \
        static UIColor const color = constant(value, value);                                                 \
        return color;                                                                                        \
    }
// The platform's published values by appearance.
#define PHONE_DYNAMIC_COLOR(name, light, dark)                                                               \
    UIColor UIColor::name()                                                                                  \
    {                                                                                                        \
        static UIColor const color = constant(light, dark);                                                  \
        return color;                                                                                        \
    }

PHONE_FIXED_COLOR(clearColor, Color::black(0))
PHONE_FIXED_COLOR(blackColor, Color::white(0))
PHONE_FIXED_COLOR(whiteColor, Color::white(1))
PHONE_FIXED_COLOR(grayColor, Color::white(0.5))
PHONE_FIXED_COLOR(darkGrayColor, Color::white(1 / 3.0))
PHONE_FIXED_COLOR(lightGrayColor, Color::white(2 / 3.0))
PHONE_FIXED_COLOR(redColor, Color::hex(0xff0000))
PHONE_FIXED_COLOR(greenColor, Color::hex(0x00ff00))
PHONE_FIXED_COLOR(blueColor, Color::hex(0x0000ff))
PHONE_DYNAMIC_COLOR(systemBlueColor, Color::hex(0x007aff), Color::hex(0x0a84ff))
PHONE_DYNAMIC_COLOR(systemRedColor, Color::hex(0xff3b30), Color::hex(0xff453a))
PHONE_DYNAMIC_COLOR(systemGreenColor, Color::hex(0x34c759), Color::hex(0x30d158))
PHONE_DYNAMIC_COLOR(systemGrayColor, Color::hex(0x8e8e93), Color::hex(0x8e8e93))
PHONE_DYNAMIC_COLOR(labelColor, Color::hex(0x000000), Color::hex(0xffffff))
PHONE_DYNAMIC_COLOR(secondaryLabelColor, Color::hex(0x3c3c43, 0.6), Color::hex(0xebebf5, 0.6))
PHONE_DYNAMIC_COLOR(systemBackgroundColor, Color::hex(0xffffff), Color::hex(0x000000))
PHONE_DYNAMIC_COLOR(secondarySystemBackgroundColor, Color::hex(0xf2f2f7), Color::hex(0x1c1c1e))
PHONE_DYNAMIC_COLOR(separatorColor, Color::hex(0x3c3c43, 0.29), Color::hex(0x545458, 0.6))
#undef PHONE_FIXED_COLOR
#undef PHONE_DYNAMIC_COLOR

UIColor UIColor::initWithRed(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) const
{
    UIColor const self { init().object };
    stateOf(self).light = stateOf(self).dark = { red, green, blue, alpha };
    return self;
}

Color UIColor::rgba() const
{
    if (!object)
        return { 0, 0, 0, 0 };
    ColorState const& state = stateOf(*this);
    return bootOptions().appearance == Appearance::dark ? state.dark : state.light;
}

UIColor UIColor::colorWithAlphaComponent(CGFloat alpha) const
{
    if (!object)
        return {};
    ColorState const& state = stateOf(*this);
    return makeColor(state.light.withAlpha(alpha), state.dark.withAlpha(alpha));
}

CGColorRef UIColor::CGColor() const
{
    if (!object)
        return nullptr;
    ColorState& state = stateOf(*this);
    if (!state.pointer || !(state.pointer->color == rgba())) {
        CGColorRelease(state.pointer);
        state.pointer = new ::CGColor { 1, rgba() };
    }
    return state.pointer;
}

BOOL UIColor::isEqual(objc::handle other) const
{
    UIColor const color = objc::cast<UIColor>(other);
    if (!color)
        return false;
    return stateOf(*this).light == stateOf(color).light && stateOf(*this).dark == stateOf(color).dark;
}

NSUInteger UIColor::hash() const
{
    Color const& c = stateOf(*this).light;
    std::hash<double> const hash;
    return hash(c.red) ^ (hash(c.green) << 1) ^ (hash(c.blue) << 2) ^ (hash(c.alpha) << 3);
}

NSString UIColor::description() const
{
    Color const c = rgba();
    char text[128];
    std::snprintf(text, sizeof text, "UIExtendedSRGBColorSpace %g %g %g %g", c.red, c.green, c.blue, c.alpha);
    return toNSString(text);
}

BOOL UIColor::getComponents(CGFloat* red, CGFloat* green, CGFloat* blue, CGFloat* alpha) const
{
    Color const c = rgba();
    for (auto const& [slot, value] : { std::pair { red, c.red }, std::pair { green, c.green },
             std::pair { blue, c.blue }, std::pair { alpha, c.alpha } }) {
        if (slot)
            *slot = value;
    }
    return true;
}

void defineUIColor()
{
    objc::define<UIColor>()
        .state<ColorState>()
        .class_method<"colorWithRed:green:blue:alpha:", &UIColor::colorWithRed>()
        .class_method<"colorWithWhite:alpha:", &UIColor::colorWithWhite>()
        .class_method<"clearColor", &UIColor::clearColor>()
        .class_method<"blackColor", &UIColor::blackColor>()
        .class_method<"whiteColor", &UIColor::whiteColor>()
        .class_method<"grayColor", &UIColor::grayColor>()
        .class_method<"darkGrayColor", &UIColor::darkGrayColor>()
        .class_method<"lightGrayColor", &UIColor::lightGrayColor>()
        .class_method<"redColor", &UIColor::redColor>()
        .class_method<"greenColor", &UIColor::greenColor>()
        .class_method<"blueColor", &UIColor::blueColor>()
        .class_method<"systemBlueColor", &UIColor::systemBlueColor>()
        .class_method<"systemRedColor", &UIColor::systemRedColor>()
        .class_method<"systemGreenColor", &UIColor::systemGreenColor>()
        .class_method<"systemGrayColor", &UIColor::systemGrayColor>()
        .class_method<"labelColor", &UIColor::labelColor>()
        .class_method<"secondaryLabelColor", &UIColor::secondaryLabelColor>()
        .class_method<"systemBackgroundColor", &UIColor::systemBackgroundColor>()
        .class_method<"secondarySystemBackgroundColor", &UIColor::secondarySystemBackgroundColor>()
        .class_method<"separatorColor", &UIColor::separatorColor>()
        .method<"initWithRed:green:blue:alpha:", &UIColor::initWithRed>()
        .method<"colorWithAlphaComponent:", &UIColor::colorWithAlphaComponent>()
        .method<"CGColor", &UIColor::CGColor>()
        .method<"isEqual:", &UIColor::isEqual>()
        .method<"hash", &UIColor::hash>()
        .method<"description", &UIColor::description>()
        .method<"getRed:green:blue:alpha:", &UIColor::getComponents>()
        .install();
}

}

extern "C" {
CGColorRef CGColorRetain(CGColorRef color)
{
    if (color)
        ++color->references;
    return color;
}
void CGColorRelease(CGColorRef color)
{
    if (color && --color->references == 0)
        delete color;
}
}
