#include "phone/apps/siri_card.hpp"

#include "phone/apps/layout_view.hpp"
#include "phone/apps/modal_card.hpp"
#include "phone/apps/overlay_window.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/screen_edges.hpp"
#include "phone/uikit/ui_control.hpp"

namespace phone {

namespace {

using graphics::Color;

// Over calls, under alerts.
constexpr double kSiriLevel = 1070;
constexpr double kOrb = 96;          // points
constexpr double kSiriMargin = 28;   // points

using SiriWindow = OverlayWindow<"SBAssistantWindow", "SBAssistantRootViewController">;

struct Siri {
    SiriWindow window;
    int request { 0 };   // counts requests and dismissals: an older one that still comes is not shown
};

Siri& siri()
{
    static Siri& theSiri = *new Siri;
    return theSiri;
}

struct SiriTarget : objc::subclass<SiriTarget, "SBAssistantTarget", NSObject> {
    using subclass::subclass;
    void touched(objc::handle) const
    {
        TraceOwnScope const own;
        hideSiri();
    }
};

SiriTarget siriTarget()
{
    static objc::ref<SiriTarget>& made =
        *new objc::ref<SiriTarget>(objc::adopt(SiriTarget::alloc().init<SiriTarget>()));
    return made;
}

// Overlapping lights of our own.
void drawOrb(DrawContext& context, CGRect bounds)
{
    struct Light {
        double x, y, radius;
        unsigned color;
    };
    constexpr Light kLights[] { { 0.40, 0.42, 0.40, 0x2aa8ff }, { 0.62, 0.44, 0.36, 0xa05bff },
        { 0.52, 0.64, 0.34, 0xff5fa8 }, { 0.50, 0.50, 0.20, 0xffffff } };
    double const side = bounds.size.width;
    for (Light const& light : kLights) {
        Color const color = Color::hex(light.color);
        auto* const pattern = cairo_pattern_create_radial(
            light.x * side, light.y * side, 0, light.x * side, light.y * side, light.radius * side);
        cairo_pattern_add_color_stop_rgba(pattern, 0, color.red, color.green, color.blue, 0.85);
        cairo_pattern_add_color_stop_rgba(pattern, 1, color.red, color.green, color.blue, 0);
        cairo_set_source(context.cairo, pattern);
        cairo_paint(context.cairo);
        cairo_pattern_destroy(pattern);
    }
}

objc::ref<LayoutView> makeCard(std::string const& text)
{
    auto const touchable = make<UIControl>();
    touchable->setAccessibilityLabel(toNSString("Siri"));
    touchable->addTarget(siriTarget(), objc::selector<"phone_touched:">(), ControlEvent::touchUpInside);
    auto const blur = makeBlur(2, 0);
    blur->setUserInteractionEnabled(false);
    auto const label = makeText(text, 28, graphics::FontWeight::kMedium, Color::white());
    label->setNumberOfLines(0);
    auto const orb = DrawnView::make({}, drawOrb);

    auto card = LayoutView::make();
    identify(card.get(), "siri");
    for (UIView const view :
        { UIView(blur.get()), UIView(touchable.get()), UIView(label.get()), UIView(orb.get()) })
        card->addSubview(view);
    auto const edges = std::make_shared<ScreenEdges>(card.get(), Color::white());
    card->setLayout([blur, touchable, label, orb, edges](CGRect bounds) {
        UIEdgeInsets const insets = usableInsets();
        double const left = insets.left + kSiriMargin;
        double const width = bounds.size.width - left - insets.right - kSiriMargin;
        blur->setFrame(bounds);
        touchable->setFrame(bounds);
        double const top = insets.top + 40;
        double const room = bounds.size.height - top - insets.bottom - kOrb - 24;
        double const height = std::min(label->sizeThatFits({ width, 10000 }).height, std::max(room, 40.0));
        label->setFrame({ { left, top }, { width, height } });
        orb->setFrame({ { (bounds.size.width - kOrb) / 2, bounds.size.height - insets.bottom - kOrb - 16 },
            { kOrb, kOrb } });
        edges->layOut(bounds);
    });
    return card;
}

}

void showSiri(std::string const& text)
{
    int const request = ++siri().request;
    clock().post([request, text] {
        if (siri().request != request)
            return;
        TraceOwnScope const own;
        siri().window.show(kSiriLevel, asBase<UIView>(makeCard(text)));
    });
}

void hideSiri()
{
    ++siri().request;
    siri().window.hide();
}

bool isSiriShown() { return siri().window.isShown(); }
void layOutSiri() { siri().window.layOut(); }

void defineSiriCard()
{
    objc::define<SiriTarget>().method<"phone_touched:", &SiriTarget::touched>().install();
    SiriWindow::defineClasses();
}

}
