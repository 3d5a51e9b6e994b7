#include "phone/apps/app_card.hpp"

#include "objc/define.hpp"
#include "phone/apps/applications.hpp"
#include "phone/apps/modal_card.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/app_icon.hpp"
#include "phone/graphics/path.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/ui_touch.hpp"

namespace phone {

namespace {

using graphics::Color;

// Points.
constexpr double kCardIconSide = 84;
constexpr double kAppMargin = 24;

// Neither white nor black, so that what lies above an application stands out from it.
UIColor cardColor() { return UIColor::dynamic(Color::hex(0xd9e2f1), Color::hex(0x1d2536)); }

constexpr double kTouchMark = 44;
constexpr double kLeftMarkAlpha = 0.45;   // of a touch that is over
constexpr double kMarkFadeSeconds = 0.3;

// What an application shows of the touches that reach it: where the last one is or was, and how many there were.
struct AppTouches {
    objc::ref<DrawnView> mark;
    int count { 0 };
};

struct AppView : objc::subclass<AppView, "SBApplicationCardView", LayoutView> {
    using subclass::subclass;

    AppTouches& touches() const { return objc::state<AppTouches>(*this); }

    void markAt(objc::handle touches) const
    {
        AppTouches& state = this->touches();
        if (state.mark)
            state.mark->setCenter(touches.send<"anyObject", UITouch>().locationInView(*this));
    }
    void makeMark() const
    {
        AppTouches& state = touches();
        if (state.mark)
            state.mark->removeFromSuperview();
        std::string const number = std::to_string(++state.count);
        state.mark = DrawnView::make({ {}, { kTouchMark, kTouchMark } },
            [number](DrawContext& context, CGRect bounds) { drawMark(context, bounds, number); });
        identify(state.mark, "touch");
        state.mark->setAccessibilityLabel(toNSString(number));
        addSubview(state.mark);
    }
    void leaveMark() const
    {
        if (auto const mark = touches().mark)
            animateWithOptions(kMarkFadeSeconds, 0, AnimationOption::allowUserInteraction,
                [mark] { mark->setAlpha(kLeftMarkAlpha); });
    }
    static void drawMark(DrawContext& context, CGRect bounds, std::string const& number)
    {
        graphics::Rect const circle = toGraphics(bounds).inset(2, 2);
        Color const color = context.dark ? Color::hex(0x0a84ff) : Color::hex(0x007aff);
        graphics::addCircle(context.cairo, { circle.midX(), circle.midY() }, circle.width / 2);
        graphics::fill(context.cairo, Color { color.red, color.green, color.blue, 0.3 });
        graphics::addCircle(context.cairo, { circle.midX(), circle.midY() }, circle.width / 2);
        graphics::stroke(context.cairo, color, 2);
        graphics::TextStyle style;
        style.font = graphics::systemFont(17, graphics::FontWeight::kSemibold);
        style.alignment = graphics::TextAlignment::center;
        style.minimumScale = 0.5;
        graphics::drawText(context.cairo, number, style, circle, color);
    }

    // Passed on as well: the screen's lower edge leads home from any application.
    void touchesBegan(objc::handle touches, objc::handle event) const
    {
        makeMark();
        markAt(touches);
        objc::send_super<AppView, "touchesBegan:withEvent:">(*this, touches, event);
    }
    void touchesMoved(objc::handle touches, objc::handle event) const
    {
        markAt(touches);
        objc::send_super<AppView, "touchesMoved:withEvent:">(*this, touches, event);
    }
    void touchesEnded(objc::handle touches, objc::handle event) const
    {
        leaveMark();
        objc::send_super<AppView, "touchesEnded:withEvent:">(*this, touches, event);
    }
    void touchesCancelled(objc::handle touches, objc::handle event) const
    {
        leaveMark();
        objc::send_super<AppView, "touchesCancelled:withEvent:">(*this, touches, event);
    }
};

struct CardViews {
    objc::ref<DrawnView> icon;
    objc::ref<UILabel> name;
    objc::ref<UILabel> subject;
    objc::ref<UILabel> url;
};

objc::ref<UILabel> centred(std::string_view text, double size, double weight, UIColor color)
{
    auto label = makeText(text, size, weight, {});
    label->setTextColor(color);
    label->setTextAlignment(NSInteger(NSTextAlignment::center));
    return label;
}

void layOut(CardViews const& views, CGRect bounds)
{
    double const width = bounds.size.width;
    double const inner = width - 2 * kAppMargin;
    double const middle = bounds.size.height * 0.42;
    views.icon->setFrame(
        { { (width - kCardIconSide) / 2, middle - kCardIconSide - 18 }, { kCardIconSide, kCardIconSide } });
    views.name->setFrame({ { kAppMargin, middle }, { inner, 30 } });
    views.subject->setFrame({ { kAppMargin, middle + 44 }, { inner, 34 } });
    double const height = views.url->sizeThatFits({ inner, 10000 }).height;
    views.url->setFrame({ { kAppMargin, middle + 84 }, { inner, height } });
}

}

void defineAppCard()
{
    objc::define<AppView>()
        .state<AppTouches>()
        .method<"touchesBegan:withEvent:", &AppView::touchesBegan>()
        .method<"touchesMoved:withEvent:", &AppView::touchesMoved>()
        .method<"touchesEnded:withEvent:", &AppView::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &AppView::touchesCancelled>()
        .install();
}

objc::ref<UIView> makeAppCard(std::string const& identifier, std::string const& url)
{
    Application const* const known = applicationWithIdentifier(identifier);
    std::string const name = known ? known->name : identifier;
    auto const card = phone::make<AppView>();
    card->setBackgroundColor(cardColor());
    identify(card.get(), "application");

    CardViews views;
    views.icon = DrawnView::make({}, [known, name, identifier](DrawContext& context, CGRect bounds) {
        if (known && known->icon)
            graphics::drawAppIcon(context.cairo, *known->icon, toGraphics(bounds));
        else
            graphics::drawLetterIcon(context.cairo, name, identifier, toGraphics(bounds));
    });
    views.name = centred(name, 22, graphics::FontWeight::kSemibold, UIColor::labelColor());
    views.subject = centred(subjectOfUrl(url), 28, graphics::FontWeight::kRegular, UIColor::labelColor());
    views.subject->setAdjustsFontSizeToFitWidth(true);
    views.subject->setMinimumScaleFactor(0.5);
    views.url = centred(url, 13, graphics::FontWeight::kRegular, UIColor::secondaryLabelColor());
    views.url->setNumberOfLines(0);
    // A URL and a number read from left to right in every language.
    for (UILabel const label : { views.subject.get(), views.url.get() })
        label.setSemanticContentAttribute(NSInteger(SemanticContent::forceLeftToRight));

    card->addSubview(views.icon.get());
    for (UILabel const label : { views.name.get(), views.subject.get(), views.url.get() })
        card->addSubview(label);
    card->setLayout([views](CGRect bounds) { layOut(views, bounds); });
    return asBase<UIView>(card);
}

}
