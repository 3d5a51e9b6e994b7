#include "phone/springboard/status_bar.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/clock_text.hpp"
#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/springboard/scene_parts.hpp"

#include <algorithm>

namespace phone {

namespace {

constexpr char kCarrier[] = "Telekabel";
constexpr double kBatteryLevel = 0.78;

// Signal, wifi, battery from left to right in 74 x 14 points.
constexpr graphics::Size kSignsSize { 74, 14 };
constexpr double kSmallSignsScale = 0.85;   // in a bar without a cut-out

constexpr double kBarTextSize = 15;
constexpr double kSmallTextSize = 12;
constexpr double kMarginInEnd = 12;

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
    , m_text(makeText(kCarrier, kBarTextSize, graphics::FontWeight::kMedium, graphics::Color::white()))
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

CGSize StatusBar::fitText(double size, double width)
{
    auto const weight =
        m_leading == StatusBarLeading::time ? graphics::FontWeight::kSemibold : graphics::FontWeight::kMedium;
    auto const sizeAt = [&](double fontSize) {
        m_text->setFont(UIFont::systemFontOfSizeWeight(fontSize, weight));
        return m_text->sizeThatFits({ 0, 0 });
    };
    CGSize const natural = sizeAt(size);
    return natural.width > width ? sizeAt(size * width / natural.width) : natural;
}

void StatusBar::layOut(graphics::Rect frame, double end)
{
    m_view->setFrame(fromGraphics(frame));
    bool const hasCutOut = end > 0;
    // Beside the cut-out the line stands a little below the middle.
    double const middle = hasCutOut ? frame.height / 2 + 1 : frame.height / 2;
    CGSize const textSize =
        hasCutOut ? fitText(kBarTextSize, end - 2 * kMarginInEnd) : fitText(kSmallTextSize, frame.width / 2);
    double const signsScale =
        hasCutOut ? std::min(1.0, (end - 2 * kMarginInEnd) / kSignsSize.width) : kSmallSignsScale;

    double const side = frame.x > 0 ? 4 : 8;
    double const textX = hasCutOut ? (end - textSize.width) / 2 : side;
    double const signsX =
        frame.width - (hasCutOut ? (end + kSignsSize.width) / 2 : side - 4 + kSignsSize.width);
    graphics::Rect text { textX, middle - textSize.height / 2, textSize.width, textSize.height };
    graphics::Rect signs { signsX, middle - kSignsSize.height / 2, kSignsSize.width, kSignsSize.height };
    if (isRightToLeft()) {
        text = mirrored(text, frame.width);
        signs = mirrored(signs, frame.width);
    }
    m_text->setFrame(fromGraphics(text));
    m_signs->setTransform(kIdentity);
    m_signs->setFrame(fromGraphics(signs));
    m_signs->setTransform(scaling(signsScale, signsScale));
}

void StatusBar::updateClock()
{
    if (m_leading != StatusBarLeading::time)
        return;
    auto const& options = bootOptions();
    m_text->setText(toNSString(lockScreenTime(clock().date(), options.language, options.timezone)));
}

}
