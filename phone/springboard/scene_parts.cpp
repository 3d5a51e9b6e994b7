#include "phone/springboard/scene_parts.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/graphics/wallpaper.hpp"
#include "phone/kernel/services.hpp"

namespace phone {

objc::ref<UILabel> makeText(std::string_view text, double size, double weight, graphics::Color color)
{
    auto label = make<UILabel>();
    label->setFont(UIFont::systemFontOfSizeWeight(size, weight));
    label->setTextColor(UIColor::of(color));
    label->setText(toNSString(text));
    return label;
}

objc::ref<DrawnView> makeGlyph(graphics::Glyph glyph, graphics::Color color)
{
    return DrawnView::make({}, [glyph, color](DrawContext& context, CGRect bounds) {
        graphics::drawGlyph(context.cairo, glyph, toGraphics(bounds), color);
    });
}

objc::ref<UIVisualEffectView> makeBlur(NSInteger style, double cornerRadius)
{
    auto blur = objc::adopt(UIVisualEffectView::alloc().send<"initWithEffect:", UIVisualEffectView>(
        UIBlurEffect::effectWithStyle(style)));
    blur->setClipsToBounds(true);
    blur->setCornerRadius(cornerRadius);
    blur->layerProperties().continuousCorners = true;
    blur->setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    return blur;
}

objc::ref<DrawnView> makeWallpaper()
{
    auto wallpaper = DrawnView::make({}, [](DrawContext& context, CGRect bounds) {
        auto const variant =
            context.dark ? graphics::WallpaperVariant::dark : graphics::WallpaperVariant::light;
        graphics::drawBitmap(context.cairo,
            graphics::wallpaper(toGraphics(bounds.size), context.scale, variant), toGraphics(bounds));
    });
    wallpaper->setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    identify(wallpaper, "wallpaper");
    return wallpaper;
}

void identify(UIView view, char const* identifier)
{
    view.setAccessibilityIdentifier(toNSString(identifier));
}

bool isDark() { return bootOptions().appearance == Appearance::dark; }

bool isRightToLeft() { return bootOptions().isRightToLeft(); }

}
