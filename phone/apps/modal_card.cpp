#include "phone/apps/modal_card.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/graphics/fonts.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/screen_edges.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_window.hpp"

namespace phone {

namespace {

using graphics::Color;

// Points, as on phones; the card's distance from the top and its corners measured on iOS 13.
constexpr double kStatusBar = 20;
constexpr double kGapAboveCard = 10;
constexpr double kCardRadius = 10;
constexpr double kSheetBar = 56;
constexpr double kScreenBar = 44;
constexpr double kBarMargin = 16;
constexpr double kTitleMargin = 92;
constexpr double kCardSlideSeconds = 0.4;

constexpr int kFirstWithCards = 13;   // iOS

bool isCard(CGRect bounds)
{
    return bootOptions().ios.major >= kFirstWithCards && bounds.size.height > bounds.size.width;
}

}

UIColor sheetColor() { return UIColor::dynamic(Color::white(), Color::hex(0x1c1c1e)); }

objc::ref<UIView> makeHairline()
{
    auto line = make<UIView>();
    line->setBackgroundColor(UIColor::separatorColor());
    return line;
}

double hairlineHeight() { return 1 / screenScale(); }

UIEdgeInsets usableInsets()
{
    UIEdgeInsets insets = safeAreaOfScreen();
    CGSize const size = screenBounds().size;
    if (size.height > size.width)
        insets.top = std::max(insets.top, kStatusBar);
    return insets;
}

ModalCard::ModalCard(UIViewController controller, std::string_view title)
    : m_controller(controller)
    , m_root(LayoutView::make(screenBounds()))
    , m_dimming(make<UIView>())
    , m_card(make<UIView>())
    , m_content(LayoutView::make())
    , m_title(makeText(title, 17, graphics::FontWeight::kSemibold, Color::black()))
    , m_barLine(makeHairline())
{
    m_dimming->setBackgroundColor(UIColor::dynamic(Color::black(0.2), Color::black(0.48)));
    m_card->setBackgroundColor(sheetColor());
    m_card->setClipsToBounds(true);
    m_title->setTextColor(UIColor::labelColor());
    m_title->setTextAlignment(NSInteger(NSTextAlignment::center));
    m_title->setAdjustsFontSizeToFitWidth(true);
    m_title->setMinimumScaleFactor(0.8);
    m_root->addSubview(m_dimming);
    m_root->addSubview(m_card);
    for (UIView const view : { UIView(m_content.get()), UIView(m_title.get()), m_barLine.get() })
        m_card->addSubview(view);
    m_edges = std::make_unique<ScreenEdges>(m_root, isDark() ? Color::white() : Color::black());
    m_root->setLayout([this](CGRect bounds) { layOut(bounds); });
    controller.setView(m_root.get());
}

ModalCard::~ModalCard()
{
    m_root->setLayout({});
    m_content->setLayout({});
}

UIButton ModalCard::addButton(Side side, std::string_view title, SEL action, Weight weight)
{
    auto button = objc::retain(UIButton::buttonWithType(UIButton::cls(), NSInteger(UIButtonType::system)));
    button->setTitle(toNSString(title), ControlState::normal);
    button->titleLabel().setFont(UIFont::systemFontOfSizeWeight(
        17, weight == Weight::strong ? graphics::FontWeight::kSemibold : graphics::FontWeight::kRegular));
    button->addTarget(m_controller, action, ControlEvent::touchUpInside);
    m_card->addSubview(button.get());
    m_buttons.push_back({ side, button });
    m_root->setNeedsLayout();
    return button;
}

void ModalCard::setContentLayout(LayoutView::Layout layout) { m_content->setLayout(std::move(layout)); }

void ModalCard::layOut(CGRect bounds)
{
    bool const card = isCard(bounds);
    UIEdgeInsets const insets = usableInsets();
    double const top = card ? insets.top + kGapAboveCard : 0;
    m_dimming->setFrame(bounds);
    m_dimming->setHidden(!card);
    m_card->setCornerRadius(card ? kCardRadius : 0);
    // The screen behind a card shows its own status bar; phones on their side show none.
    m_edges->setStatusBarHidden(card || bounds.size.width > bounds.size.height);
    m_edges->layOut(bounds);
    // As far below the screen as its corners are round: the lower ones don't show.
    CGRect const frame { { 0, top },
        { bounds.size.width, bounds.size.height - top + (card ? kCardRadius : 0) } };
    if (isIdentity(m_card->transform()))
        m_card->setFrame(frame);

    double const barTop = card ? 0 : insets.top;
    double const barHeight = card ? kSheetBar : kScreenBar;
    double const barBottom = barTop + barHeight;
    double const left = insets.left + kBarMargin - kTouchMargin;
    double const right = bounds.size.width - insets.right - kBarMargin + kTouchMargin;
    double const titleLeft = insets.left + kTitleMargin;
    m_title->setFrame({ { titleLeft, barTop },
        { bounds.size.width - titleLeft - insets.right - kTitleMargin, barHeight } });
    for (auto const& [side, button] : m_buttons) {
        bool const isLeft = (side == Side::leading) != isRightToLeft();
        double const width = button->intrinsicContentSize().width + 2 * kTouchMargin;
        button->setFrame({ { isLeft ? left : right - width, barTop }, { width, barHeight } });
    }
    m_barLine->setFrame({ { 0, barBottom - hairlineHeight() }, { bounds.size.width, hairlineHeight() } });
    m_content->setFrame({ { 0, barBottom }, { bounds.size.width, bounds.size.height - top - barBottom } });
}

void ModalCard::animate(bool presenting, std::function<void()> done) const
{
    auto const root = m_root;
    auto const dimming = m_dimming;
    auto const card = m_card;
    root->layoutIfNeeded();
    double const distance = card->bounds().size.height;
    if (presenting) {
        dimming->setAlpha(0);
        card->setTransform(translation(0, distance));
    }
    animateWithOptions(
        kCardSlideSeconds, 0, AnimationOption::curveEaseOut,
        [dimming, card, presenting, distance] {
            dimming->setAlpha(presenting ? 1 : 0);
            card->setTransform(presenting ? kIdentity : translation(0, distance));
        },
        [done = std::move(done)](bool) { done(); });
}

}
