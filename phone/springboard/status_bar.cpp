#include "phone/springboard/status_bar.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/clock_text.hpp"
#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/springboard/scene_parts.hpp"

namespace phone {

namespace {

constexpr char kCarrier[] = "Telekabel";
constexpr double kBatteryLevel = 0.78;

// Signal, wifi, battery from left to right in 74 x 14 points.
constexpr graphics::Size kSignsSize { 74, 14 };

void drawSigns(DrawContext& context, graphics::Color const& color)
{
    graphics::drawSignalBars(context.cairo, { 0, 1.5, 18, 11.5 }, 4, color);
    graphics::drawWifi(context.cairo, { 24, 1, 17, 12 }, 3, color);
    graphics::drawBattery(context.cairo, { 47, 1, 27, 12.5 }, kBatteryLevel, color);
}

}

StatusBar::StatusBar(UIView superview, StatusBarLeading leading)
    : m_leading(leading)
    , m_view(NamedView<"UIStatusBar_Modern">::make())
    , m_text(makeText(kCarrier, 15, graphics::FontWeight::kMedium, graphics::Color::white()))
    , m_signs(DrawnView::make({}, {}))
{
    identify(m_signs, "signal, wifi, battery");
    m_view->setUserInteractionEnabled(false);
    m_view->addSubview(m_text);
    m_view->addSubview(m_signs);
    superview.addSubview(m_view);
    setColor(graphics::Color::white());
    updateClock();
}

void StatusBar::setColor(graphics::Color const& color)
{
    m_text->setTextColor(UIColor::of(color));
    m_signs->setDraw([color](DrawContext& context, CGRect) { drawSigns(context, color); });
}

void StatusBar::layOut(graphics::Rect frame, double screenWidth)
{
    m_view->setFrame(fromGraphics(frame));
    bool const hasNotch = frame.height > 20;
    double const size = hasNotch ? 15 : 12;
    double const side = hasNotch ? 32 : frame.x > 0 ? 4 : 8;
    // Beside the notch the line stands a little below the middle.
    double const middle = hasNotch ? frame.height / 2 + 1 : frame.height / 2;
    double const scale = hasNotch ? 1 : 0.85;

    m_text->setFont(UIFont::systemFontOfSizeWeight(size,
        m_leading == StatusBarLeading::time ? graphics::FontWeight::kSemibold
                                            : graphics::FontWeight::kMedium));
    CGSize const textSize = m_text->sizeThatFits({ screenWidth, 30 });
    graphics::Rect text { side, middle - textSize.height / 2, textSize.width, textSize.height };
    graphics::Rect signs { frame.width - side + 4 - kSignsSize.width, middle - kSignsSize.height / 2,
        kSignsSize.width, kSignsSize.height };
    if (isRightToLeft()) {
        text = mirrored(text, frame.width);
        signs = mirrored(signs, frame.width);
    }
    m_text->setFrame(fromGraphics(text));
    m_signs->setTransform(kIdentity);
    m_signs->setFrame(fromGraphics(signs));
    m_signs->setTransform(scaling(scale, scale));
}

void StatusBar::updateClock()
{
    if (m_leading != StatusBarLeading::time)
        return;
    auto const& options = bootOptions();
    m_text->setText(toNSString(lockScreenTime(clock().date(), options.language, options.timezone)));
}

}
