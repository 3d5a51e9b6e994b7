#include "phone/apps/call_card.hpp"

#include "phone/apps/applications.hpp"
#include "phone/apps/layout_view.hpp"
#include "phone/apps/modal_card.hpp"
#include "phone/apps/overlay_window.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/path.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/screen_edges.hpp"
#include "phone/springboard/springboard_state.hpp"

namespace phone {

namespace {

using graphics::Color;

// Points.
constexpr double kEndSide = 70;
constexpr double kCallMargin = 24;

// Over the lock screen (1050), under Siri and alerts.
constexpr double kCallLevel = 1060;

using CallWindow = OverlayWindow<"SBInCallWindow", "SBInCallViewController">;

CallWindow& window()
{
    static CallWindow& theWindow = *new CallWindow;
    return theWindow;
}

// The target of the button that ends the call.
struct CallTarget : objc::subclass<CallTarget, "SBInCallTarget", NSObject> {
    using subclass::subclass;
    void endPressed(objc::handle) const
    {
        TraceOwnScope const own;
        hideCall();
    }
};

CallTarget callTarget()
{
    static objc::ref<CallTarget>& made =
        *new objc::ref<CallTarget>(objc::adopt(CallTarget::alloc().init<CallTarget>()));
    return made;
}

struct CallViews {
    objc::ref<DrawnView> backdrop;
    objc::ref<UILabel> name;
    objc::ref<UILabel> number;
    objc::ref<UIButton> end;
    objc::ref<DrawnView> endSign;
    std::shared_ptr<ScreenEdges> edges;
};

void drawBackdrop(DrawContext& context, CGRect bounds, bool isVideo)
{
    auto* const pattern = cairo_pattern_create_linear(0, 0, 0, bounds.size.height);
    Color const top = isVideo ? Color::hex(0x2f4a3c) : Color::hex(0x3a4256);
    Color const bottom = Color::hex(0x14161c);
    cairo_pattern_add_color_stop_rgb(pattern, 0, top.red, top.green, top.blue);
    cairo_pattern_add_color_stop_rgb(pattern, 1, bottom.red, bottom.green, bottom.blue);
    cairo_set_source(context.cairo, pattern);
    cairo_paint(context.cairo);
    cairo_pattern_destroy(pattern);
}

// A handset laid down: an arc with two ends.
void drawHandset(DrawContext& context, CGRect bounds)
{
    cairo_t* const cairo = context.cairo;
    double const middle = bounds.size.width / 2;
    double const radius = bounds.size.width * 0.3;
    cairo_set_line_width(cairo, bounds.size.width * 0.1);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    graphics::setColor(cairo, Color::white());
    cairo_arc(cairo, middle, middle + radius * 0.75, radius, 1.2 * 3.14159265, 1.8 * 3.14159265);
    cairo_stroke(cairo);
    for (double const side : { -1.0, 1.0 }) {
        double const x = middle + side * radius * 0.84;
        cairo_move_to(cairo, x, middle + radius * 0.1);
        cairo_line_to(cairo, x, middle + radius * 0.34);
        cairo_set_line_width(cairo, bounds.size.width * 0.17);
        cairo_stroke(cairo);
    }
}

void layOut(CallViews const& views, CGRect bounds)
{
    UIEdgeInsets const insets = usableInsets();
    double const width = bounds.size.width;
    bool const isLandscape = width > bounds.size.height;
    double const top = insets.top + (isLandscape ? 24 : 56);
    views.backdrop->setFrame(bounds);
    views.number->setFrame({ { kCallMargin, top }, { width - 2 * kCallMargin, 42 } });
    views.name->setFrame({ { kCallMargin, top + 46 }, { width - 2 * kCallMargin, 24 } });
    double const endTop = bounds.size.height - insets.bottom - kEndSide - (isLandscape ? 16 : 72);
    views.end->setFrame({ { (width - kEndSide) / 2, endTop }, { kEndSide, kEndSide } });
    views.endSign->setFrame({ {}, { kEndSide, kEndSide } });
    views.edges->layOut(bounds);
}

objc::ref<LayoutView> makeCard(Application const& application, std::string const& number)
{
    bool const isVideo = application.icon == graphics::AppIcon::video;
    CallViews views;
    views.backdrop = DrawnView::make(
        {}, [isVideo](DrawContext& context, CGRect bounds) { drawBackdrop(context, bounds, isVideo); });
    views.number = makeText(number, 32, graphics::FontWeight::kRegular, Color::white());
    views.number->setAdjustsFontSizeToFitWidth(true);
    views.number->setMinimumScaleFactor(0.5);
    views.number->setSemanticContentAttribute(NSInteger(SemanticContent::forceLeftToRight));
    views.name = makeText(std::string(application.name) + " · calling…", 17, graphics::FontWeight::kRegular,
        Color::white(1, 0.7));
    for (UILabel const label : { views.number.get(), views.name.get() })
        label.setTextAlignment(NSInteger(NSTextAlignment::center));
    views.end = objc::retain(UIButton::buttonWithType(UIButton::cls(), NSInteger(UIButtonType::custom)));
    views.end->setBackgroundColor(UIColor::of(Color::hex(0xff3b30)));
    views.end->setCornerRadius(kEndSide / 2);
    views.end->setAccessibilityLabel(toNSString("End"));
    views.end->addTarget(callTarget(), objc::selector<"phone_endPressed:">(), ControlEvent::touchUpInside);
    views.endSign = DrawnView::make({}, drawHandset);
    views.end->addSubview(views.endSign.get());

    auto card = LayoutView::make();
    identify(card.get(), "call");
    card->addSubview(views.backdrop.get());
    card->addSubview(views.number.get());
    card->addSubview(views.name.get());
    card->addSubview(views.end.get());
    views.edges = std::make_shared<ScreenEdges>(card.get(), Color::white());
    card->setLayout([views](CGRect bounds) { layOut(views, bounds); });
    return card;
}

}

void showCall(Application const& application, std::string const& number)
{
    window().show(kCallLevel, asBase<UIView>(makeCard(application, number)));
}

void hideCall()
{
    if (!isCallShown())
        return;
    window().hide();
    callDidEnd();
}

bool isCallShown() { return window().isShown(); }
void layOutCall() { window().layOut(); }

void defineCallCard()
{
    objc::define<CallTarget>().method<"phone_endPressed:", &CallTarget::endPressed>().install();
    CallWindow::defineClasses();
}

}
