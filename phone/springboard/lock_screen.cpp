#include "phone/springboard/lock_screen.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/graphics/path.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/adjunct_list.hpp"
#include "phone/springboard/clock_text.hpp"
#include "phone/springboard/notification_card.hpp"
#include "phone/springboard/previous.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/status_bar.hpp"
#include "phone/springboard/texts.hpp"

#include <array>

namespace phone {

namespace {

constexpr std::array kCardIcons { graphics::AppIcon::messages, graphics::AppIcon::calendar };

// A round button of blurred glass with a sign on it.
objc::ref<UIView> makeQuickAction(graphics::Glyph glyph, char const* identifier)
{
    auto button = NamedView<"CSQuickActionsButton">::make({ {}, { 50, 50 } });
    auto const blur = makeBlur(2, 25);
    blur->layerProperties().continuousCorners = false;
    blur->setFrame({ {}, { 50, 50 } });
    auto const sign = makeGlyph(glyph, graphics::Color::white());
    sign->setFrame({ { 12, 12 }, { 26, 26 } });
    button->addSubview(blur);
    button->addSubview(sign);
    identify(button, identifier);
    return button;
}

objc::ref<UILabel> makeCentred(double size, double weight, char const* identifier)
{
    auto label = makeText("", size, weight, graphics::Color::white());
    label->setTextAlignment(NSInteger(NSTextAlignment::center));
    label->setAdjustsFontSizeToFitWidth(true);
    label->setMinimumScaleFactor(0.5);
    identify(label, identifier);
    return label;
}

}

LockScreenScene::LockScreenScene(UIView root, UIViewController adjunctController)
    : m_root(root)
    , m_adjunct(adjunctController)
    , m_layout(lockScreenLayout(toGraphics(root.bounds().size), bootOptions().ios))
    , m_wallpaper(makeWallpaper())
{
    Texts const& texts = textsFor(bootOptions().language);
    root.addSubview(m_wallpaper);

    m_statusBar = std::make_unique<StatusBar>(root, StatusBarLeading::carrier);
    m_padlock = DrawnView::make({}, [this](DrawContext& context, CGRect bounds) {
        graphics::drawGlyph(context.cairo,
            m_isPadlockOpen ? graphics::Glyph::padlockOpen : graphics::Glyph::padlockClosed,
            toGraphics(bounds), graphics::Color::white());
    });
    identify(m_padlock, "padlock");
    root.addSubview(m_padlock);

    m_dateView = NamedView<"SBFLockScreenDateView">::make();
    m_dateView->setUserInteractionEnabled(false);
    m_time = makeCentred(m_layout.timeSize, m_layout.timeWeight, "time");
    m_date = makeCentred(m_layout.dateSize, m_layout.dateWeight, "date");
    m_dateView->addSubview(m_time);
    m_dateView->addSubview(m_date);
    root.addSubview(m_dateView);

    m_list = NamedView<"NCNotificationListView">::make();
    for (std::size_t i = 0; i < std::size(texts.notifications); ++i)
        m_cards.push_back(
            std::make_unique<NotificationCard>(m_list, texts.notifications[i], kCardIcons[i], m_layout));
    m_adjunctArea = NamedView<"CSAdjunctListContainerView">::make();
    identify(m_adjunctArea, "adjunct");
    m_adjunctArea->addSubview(m_adjunct.view());
    m_list->addSubview(m_adjunctArea);
    root.addSubview(m_list);

    m_torch = makeQuickAction(graphics::Glyph::torch, "torch");
    m_camera = makeQuickAction(graphics::Glyph::camera, "camera");
    root.addSubview(m_torch);
    root.addSubview(m_camera);
    m_footer = makeCentred(17, graphics::FontWeight::kSemibold, "footer");
    m_footer->setText(toNSString(m_layout.hasHomeIndicator() ? texts.swipeToUnlock : texts.pressToUnlock));
    root.addSubview(m_footer);
    m_homeIndicator = DrawnView::make({}, [](DrawContext& context, CGRect bounds) {
        graphics::addCapsule(context.cairo, toGraphics(bounds));
        graphics::fill(context.cairo, graphics::Color::white());
    });
    identify(m_homeIndicator, "home indicator");
    root.addSubview(m_homeIndicator);
    updateClock();
}

LockScreenScene::~LockScreenScene() = default;

graphics::Rect LockScreenScene::placed(graphics::Rect const& rect) const
{
    return isRightToLeft() ? mirrored(rect, m_layout.bounds.width) : rect;
}

void LockScreenScene::layOut()
{
    CGRect const bounds = m_root.bounds();
    m_layout = lockScreenLayout(toGraphics(bounds.size), bootOptions().ios);

    m_wallpaper->setFrame(bounds);
    m_statusBar->layOut(m_layout.statusBar, m_layout.statusBarEnd);
    m_padlock->setFrame(fromGraphics(placed(m_layout.padlock)));

    graphics::Rect const time = placed(m_layout.time);
    graphics::Rect const date = placed(m_layout.date);
    double const top = std::min(time.y, date.y);
    m_dateView->setFrame({ { time.x, top }, { time.width, std::max(time.maxY(), date.maxY()) - top } });
    m_time->setFont(UIFont::systemFontOfSizeWeight(m_layout.timeSize, m_layout.timeWeight));
    m_time->setFrame({ { 0, time.y - top }, { time.width, time.height } });
    m_date->setFont(UIFont::systemFontOfSizeWeight(m_layout.dateSize, m_layout.dateWeight));
    m_date->setFrame({ { 8, date.y - top }, { date.width - 16, date.height } });

    m_torch->setHidden(!m_layout.hasHomeIndicator());
    m_camera->setHidden(!m_layout.hasHomeIndicator());
    m_homeIndicator->setHidden(!m_layout.hasHomeIndicator());
    m_torch->setFrame(fromGraphics(placed(m_layout.torch)));
    m_camera->setFrame(fromGraphics(placed(m_layout.camera)));
    m_footer->setFrame(fromGraphics(placed(m_layout.footer)));
    m_homeIndicator->setFrame(fromGraphics(m_layout.homeIndicator));
    layOutList();
}

void LockScreenScene::layOutList()
{
    graphics::Rect const space = placed(m_layout.list);
    bool const isShown = !m_adjunctArea->isHidden();
    double const adjunctHeight = isShown ? adjunctListHeight(m_adjunct) : 0;
    double const cardHeight = NotificationCard::heightIn(m_layout);

    // The adjunct area keeps its height; of the notifications the newest stay that fit above it.
    double content = adjunctHeight;
    std::size_t shown = 0;
    for (; shown < m_cards.size(); ++shown) {
        double const more = cardHeight + (content > 0 ? kCardGap : 0);
        if (content + more > space.height)
            break;
        content += more;
    }

    m_list->setFrame(fromGraphics(space));
    double y = m_layout.listSinks ? std::max(0.0, space.height - content) : 0;
    for (std::size_t i = 0; i < m_cards.size(); ++i) {
        m_cards[i]->view().setHidden(i >= shown);
        m_cards[i]->layOut({ { kCardMargin, y }, { space.width - 2 * kCardMargin, cardHeight } });
        if (i < shown)
            y += cardHeight + kCardGap;
    }
    m_adjunctArea->setFrame({ { 0, y }, { space.width, adjunctHeight } });
    m_adjunct.view().setFrame({ {}, { space.width, adjunctHeight } });
}

void LockScreenScene::updatePresentingContent()
{
    bool const isPresenting = sendHookable<"isPresentingContent", BOOL>(m_adjunct);
    m_adjunctArea->setHidden(!isPresenting);
    layOutList();
}

void LockScreenScene::followContent()
{
    if (!m_adjunctArea->isHidden() && adjunctListHeight(m_adjunct) != m_adjunctArea->frame().size.height)
        layOutList();
}

void LockScreenScene::updateClock()
{
    auto const& options = bootOptions();
    Date const now = clock().date();
    m_time->setText(toNSString(lockScreenTime(now, options.language, options.timezone)));
    m_date->setText(toNSString(lockScreenDate(now, options.language, options.timezone)));
    m_statusBar->updateClock();
}

void LockScreenScene::setPadlockOpen(bool isOpen)
{
    if (m_isPadlockOpen == isOpen)
        return;
    m_isPadlockOpen = isOpen;
    m_padlock->setNeedsDisplay();
}

void adjunctContentDidChange(UIViewController controller)
{
    if (!isSpringBoardInstalled())
        return;
    auto& state = springBoard();
    if (state.lockScreen && state.adjunctController.get() == controller)
        state.lockScreen->updatePresentingContent();
}

}
