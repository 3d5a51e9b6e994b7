#include "phone/springboard/notification_card.hpp"

#include "phone/springboard/scene_parts.hpp"

#include <algorithm>

namespace phone {

namespace {

// Points. With a header: icon and name in a row of their own, title and body below.
constexpr double kPadding = 12;
constexpr double kPlainHeight = 80;
constexpr double kHeaderHeight = 104;
constexpr double kBundleIconSide = 38;
constexpr double kHeaderIconSide = 20;
constexpr double kLine = 18;

}

double NotificationCard::heightIn(LockScreenLayout const& layout)
{
    return layout.cardsHaveHeader ? kHeaderHeight : kPlainHeight;
}

NotificationCard::NotificationCard(
    UIView superview, NotificationText const& text, graphics::AppIcon icon, LockScreenLayout const& layout)
    : m_hasHeader(layout.cardsHaveHeader)
    , m_view(NamedView<"NCNotificationShortLookView">::make())
{
    graphics::Color const strong = isDark() ? graphics::Color::white() : graphics::Color::black(0.92);
    graphics::Color const weak = isDark() ? graphics::Color::white(1, 0.6) : graphics::Color::black(0.5);
    m_view->addSubview(makeBlur(isDark() ? 2 : 1, layout.cardRadius));

    m_icon = DrawnView::make({}, [icon](DrawContext& context, CGRect bounds) {
        graphics::drawAppIcon(context.cairo, icon, toGraphics(bounds));
    });
    m_age = makeText(text.age, 13, graphics::FontWeight::kRegular, weak);
    m_title = makeText(text.title, 15, graphics::FontWeight::kSemibold, strong);
    m_body = makeText(text.body, 15, graphics::FontWeight::kRegular, strong);
    m_body->setNumberOfLines(2);
    m_view->addSubview(m_icon);
    if (m_hasHeader) {
        m_application = makeText(text.application, 13, graphics::FontWeight::kRegular, weak);
        m_view->addSubview(m_application);
    }
    for (auto const& label : { m_age, m_title, m_body })
        m_view->addSubview(label);
    superview.addSubview(m_view);
}

void NotificationCard::layOut(CGRect frame)
{
    m_view->setFrame(frame);
    double const width = frame.size.width;
    m_view->children().front().setFrame({ {}, frame.size });   // the blur
    double const ageWidth = m_age->sizeThatFits({ width, kLine }).width;
    auto const place = [&](UIView view, graphics::Rect rect) {
        view.setFrame(fromGraphics(isRightToLeft() ? mirrored(rect, width) : rect));
    };
    // A label's text stands in the middle of its height, so a single line gets no more than its own.
    auto const bodyHeight = [&](double lineWidth) {
        return std::min(2 * kLine, m_body->sizeThatFits({ lineWidth, 2 * kLine }).height);
    };
    double const inner = width - 2 * kPadding;
    if (m_hasHeader) {
        place(m_icon, { kPadding, 10, kHeaderIconSide, kHeaderIconSide });
        place(m_application, { kPadding + 27, 11, inner - 35 - ageWidth, kLine });
        place(m_age, { width - kPadding - ageWidth, 11, ageWidth, kLine });
        place(m_title, { kPadding, 37, inner, kLine });
        place(m_body, { kPadding, 56, inner, bodyHeight(inner) });
        return;
    }
    double const text = kPadding + kBundleIconSide + 11;
    place(m_icon, { kPadding, (frame.size.height - kBundleIconSide) / 2, kBundleIconSide, kBundleIconSide });
    double const textWidth = width - text - kPadding;
    double const body = bodyHeight(textWidth);
    double const top = (frame.size.height - 19 - body) / 2;   // title and body together stand in the middle
    place(m_title, { text, top, textWidth - ageWidth - 8, kLine });
    place(m_age, { width - kPadding - 2 - ageWidth, top, ageWidth, kLine });
    place(m_body, { text, top + 19, textWidth, body });
}

}
