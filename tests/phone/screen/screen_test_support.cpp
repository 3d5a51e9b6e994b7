#include "tests/phone/screen/screen_test_support.hpp"

#include "phone/foundation/foundation.hpp"
#include "phone/graphics/path.hpp"
#include "phone/uikit/uikit.hpp"

namespace phone::screentest {

ScreenTest::ScreenTest()
    : m_pool(objc::adopt(objc::cls<"NSAutoreleasePool">().send<"new", objc::handle>()))
{
    static bool const isDefined = [] {
        defineFoundation();
        defineUIKit();
        return true;
    }();
    static_cast<void>(isDefined);
}

ScreenTest::~ScreenTest() = default;

objc::ref<UIView> ScreenTest::box(CGRect frame, Pixel color)
{
    auto view = make<UIView>(frame);
    view->setBackgroundColor(
        UIColor::of({ color.red / 255.0, color.green / 255.0, color.blue / 255.0, color.alpha / 255.0 }));
    return view;
}

objc::ref<DrawnView> ScreenTest::compass(CGRect frame)
{
    return DrawnView::make(frame, [](DrawContext& context, CGRect bounds) {
        double const width = bounds.size.width;
        double const half = bounds.size.height / 2;
        graphics::addRect(context.cairo, { 0, 0, width, half });
        graphics::fill(context.cairo, { 1, 0, 0, 1 });
        graphics::addRect(context.cairo, { 0, half, width, half });
        graphics::fill(context.cairo, { 0, 0, 1, 1 });
        graphics::addRect(context.cairo, { 0, 0, 2, 2 * half });
        graphics::fill(context.cairo, { 0, 1, 0, 1 });
    });
}

objc::ref<UIVisualEffectView> ScreenTest::effect(CGRect frame, NSInteger style)
{
    auto view = objc::adopt(UIVisualEffectView::alloc().send<"initWithEffect:", UIVisualEffectView>(
        UIBlurEffect::effectWithStyle(style)));
    view->setFrame(frame);
    return view;
}

graphics::Bitmap ScreenTest::drawn(UIView root, CGSize size, double scale)
{
    auto const bitmap = graphics::Bitmap::withPoints(toGraphics(size), scale);
    {
        auto const context = bitmap.newContext();
        graphics::addRect(context.get(), bitmap.bounds());
        graphics::fill(context.get(), graphics::Color::black());
    }
    Renderer().drawViews({ root }, bitmap);
    return bitmap;
}

}
