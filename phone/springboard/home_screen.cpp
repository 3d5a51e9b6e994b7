#include "phone/springboard/home_screen.hpp"

#include "objc/define.hpp"
#include "phone/apps/applications.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/app_icon.hpp"
#include "phone/graphics/path.hpp"
#include "phone/springboard/edge_swipe.hpp"
#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/status_bar.hpp"
#include "phone/uikit/ui_screen.hpp"

#include <optional>
#include <utility>

namespace phone {

namespace {

using graphics::AppIcon;

// Neutral drawings of our own; letters where there is none.
struct IconRow {
    char const* name;
    char const* application;   // that a touch opens
    std::optional<AppIcon> icon;
};
constexpr IconRow kIcons[] {
    { "Calendar", "com.apple.mobilecal", AppIcon::calendar },
    { "Contacts", "com.apple.MobileAddressBook", AppIcon::contacts },
    { "Settings", "com.apple.Preferences", AppIcon::settings },
    { "Video", "com.apple.facetime", AppIcon::video },
    { "Weather", "com.apple.weather", std::nullopt },
    { "Notes", "com.apple.mobilenotes", std::nullopt },
    { "Maps", "com.apple.Maps", std::nullopt },
    { "Radio", "com.apple.podcasts", std::nullopt },
    { "Phone", "com.apple.mobilephone", AppIcon::phone },
    { "Browser", "com.apple.mobilesafari", AppIcon::browser },
    { "Messages", "com.apple.MobileSMS", AppIcon::messages },
    { "Music", "com.apple.Music", AppIcon::music },
};
constexpr std::size_t kDockIcons = 4;
constexpr double kIconSide = 60;   // points

struct HomeTouch {
    EdgeSwipe swipe;
    std::string application;   // whose icon the finger came down on
};

std::string applicationUnder(UIView view, objc::handle touches)
{
    auto const& home = springBoard().home;
    return home ? home->applicationAt(touches.send<"anyObject", UITouch>().locationInView(view)) : "";
}

struct HomeView : objc::subclass<HomeView, "SBHomeScreenView", UIView> {
    using subclass::subclass;
    void layoutSubviews() const
    {
        objc::send_super<HomeView, "layoutSubviews">(*this);
        if (auto const& home = springBoard().home)
            home->layOut();
    }
    HomeTouch& touch() const { return objc::state<HomeTouch>(*this); }
    void touchesBegan(objc::handle touches, objc::handle) const
    {
        touch().swipe.begin(*this, touches);
        touch().application = applicationUnder(*this, touches);
    }
    void touchesMoved(objc::handle touches, objc::handle) const
    {
        if (touch().swipe.isDone(*this, touches))
            launchApplication(kSpringBoardIdentifier);
    }
    void touchesEnded(objc::handle touches, objc::handle) const
    {
        touch().swipe.end();
        std::string const application = std::exchange(touch().application, {});
        if (!application.empty() && application == applicationUnder(*this, touches))
            launchApplication(application);
    }
    void touchesCancelled(objc::handle, objc::handle) const { touch() = {}; }
};

struct HomeController : objc::subclass<HomeController, "SBHomeScreenViewController", UIViewController> {
    using subclass::subclass;
    void loadView() const { setView(make<HomeView>(screenBounds())); }
};

DrawnView::Draw drawerOf(IconRow const& row)
{
    return [row](DrawContext& context, CGRect bounds) {
        if (row.icon)
            graphics::drawAppIcon(context.cairo, *row.icon, toGraphics(bounds));
        else
            graphics::drawLetterIcon(context.cairo, row.name, row.application, toGraphics(bounds));
    };
}

}

HomeScreenScene::HomeScreenScene(UIView root)
    : m_root(root)
    , m_wallpaper(makeWallpaper())
    , m_dock(asBase<UIView>(makeBlur(1, 30)))
{
    root.addSubview(m_wallpaper);
    root.addSubview(m_dock);
    identify(m_dock, "dock");
    for (IconRow const& row : kIcons) {
        Icon icon { NamedView<"SBIconView">::make(), DrawnView::make({}, drawerOf(row)),
            makeText(row.name, 12, graphics::FontWeight::kRegular, graphics::Color::white()) };
        icon.name->setTextAlignment(NSInteger(NSTextAlignment::center));
        icon.view->addSubview(icon.picture);
        icon.view->addSubview(icon.name);
        root.addSubview(icon.view);
        m_icons.push_back(std::move(icon));
    }
    m_statusBar = std::make_unique<StatusBar>(root, StatusBarLeading::time);
    m_homeIndicator = DrawnView::make({}, {});
    setForeground(graphics::Color::white());
    identify(m_homeIndicator, "home indicator");
    root.addSubview(m_homeIndicator);
}

HomeScreenScene::~HomeScreenScene() = default;

void HomeScreenScene::layOut()
{
    CGRect const bounds = m_root.bounds();
    auto const layout = lockScreenLayout(toGraphics(bounds.size), bootOptions().ios);
    m_wallpaper->setFrame(bounds);
    if (m_card)
        m_card->setFrame(bounds);
    m_statusBar->layOut(layout.statusBar, layout.statusBarEnd);
    m_homeIndicator->setHidden(!layout.hasHomeIndicator());
    m_homeIndicator->setFrame(fromGraphics(layout.homeIndicator));
    layOutIcons(bounds);
}

void HomeScreenScene::layOutIcons(CGRect bounds)
{
    bool const isLandscape = bounds.size.width > bounds.size.height;
    std::size_t const columns = isLandscape ? 6 : 4;
    double const top = isLandscape ? 30 : 76;
    double const side = isLandscape ? 70 : 12;
    double const pitch = (bounds.size.width - 2 * side) / double(columns);
    double const rowPitch = isLandscape ? 92 : 100;
    CGRect const dock { { 12, bounds.size.height - 12 - 86 }, { bounds.size.width - 24, 86 } };
    m_dock->setFrame(dock);
    std::size_t const inGrid = m_icons.size() - kDockIcons;
    for (std::size_t i = 0; i < m_icons.size(); ++i) {
        bool const isDocked = i >= inGrid;
        std::size_t const column = isDocked ? i - inGrid : i % columns;
        double const dockPitch = dock.size.width / double(kDockIcons);
        double const middle = isDocked ? dock.origin.x + dockPitch * (double(column) + 0.5)
                                       : side + pitch * (double(column) + 0.5);
        double const y = isDocked ? dock.origin.y + 13 : top + rowPitch * double(i / columns);
        graphics::Rect rect { middle - 40, y, 80, kIconSide + 20 };
        if (isRightToLeft())
            rect = mirrored(rect, bounds.size.width);
        m_icons[i].view->setFrame(fromGraphics(rect));
        m_icons[i].picture->setFrame({ { 10, 0 }, { kIconSide, kIconSide } });
        m_icons[i].name->setFrame({ { 0, kIconSide + 4 }, { 80, 16 } });
        m_icons[i].name->setHidden(isDocked);
    }
}

std::string HomeScreenScene::applicationAt(CGPoint point) const
{
    if (m_card)
        return {};
    for (std::size_t i = 0; i < m_icons.size(); ++i)
        if (contains(m_icons[i].view->frame(), point))
            return kIcons[i].application;
    return {};
}

void HomeScreenScene::updateClock() { m_statusBar->updateClock(); }

void HomeScreenScene::setForeground(graphics::Color const& color)
{
    m_statusBar->setColor(color);
    m_homeIndicator->setDraw([color](DrawContext& context, CGRect bounds) {
        graphics::addCapsule(context.cairo, toGraphics(bounds));
        graphics::fill(context.cairo, color);
    });
}

void HomeScreenScene::setCard(objc::ref<UIView> card)
{
    if (m_card)
        m_card->removeFromSuperview();
    m_card = std::move(card);
    // Nothing of what is covered shows at the edges while the screen turns; there the card's colour goes on.
    m_wallpaper->setHidden(bool(m_card));
    if (UIWindow const window = m_root.window())
        window.setBackgroundColor(m_card ? m_card->backgroundColor() : UIColor::blackColor());
    // On the wallpaper white; on a card as its text.
    setForeground(m_card && !isDark() ? graphics::Color::black() : graphics::Color::white());
    if (!m_card)
        return;
    m_card->setFrame(m_root.bounds());
    m_root.insertSubviewBelow(m_card, m_statusBar->view());
}

void defineHomeScreen()
{
    objc::define<HomeView>()
        .state<HomeTouch>()
        .method<"layoutSubviews", &HomeView::layoutSubviews>()
        .method<"touchesBegan:withEvent:", &HomeView::touchesBegan>()
        .method<"touchesMoved:withEvent:", &HomeView::touchesMoved>()
        .method<"touchesEnded:withEvent:", &HomeView::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &HomeView::touchesCancelled>()
        .install();
    objc::define<HomeController>().method<"loadView", &HomeController::loadView>().install();
}

objc::ref<UIViewController> makeHomeController()
{
    auto const controller =
        objc::adopt(HomeController { HomeController::alloc().send<"init", objc::handle>().object });
    return asBase<UIViewController>(controller);
}

}
