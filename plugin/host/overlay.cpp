// The overlay strip: shown above any application by a gesture, put away by the next one or by a swipe up.
#include "plugin/host/activator.hpp"
#include "plugin/host/contact_list.hpp"
#include "plugin/host/host_state.hpp"
#include "plugin/host/settings.hpp"
#include "plugin/strip/strip_geometry.hpp"

#include <algorithm>

namespace {

constexpr CGFloat kOverlayStripHeight = 88;   // points
constexpr NSUInteger kShowAnimationOptions = 3;

// Where the strip comes in, by the front-most application's orientation. "Along" is the axis on which it moves: y in
// portrait, x otherwise.
struct Path {
    BOOL portrait;
    CGFloat start;    // along
    CGFloat across;   // the other coordinate, as the strip is made
    CGFloat end;      // along
    CGFloat span;     // what the strip's full width is taken from
};

Path pathFor(NSInteger orientation, CGSize screen)
{
    switch (orientation) {
    case UIInterfaceOrientationLandscapeRight:
        return { false, screen.height - 20, screen.width / kLandscapeDivisor, screen.height - 98,
            screen.height };
    case UIInterfaceOrientationLandscapeLeft: return { false, -100, screen.height * 0.5, 10, screen.height };
    default: return { orientation == UIInterfaceOrientationPortrait, -100, 10, 40, screen.width };
    }
}

CGFloat stripWidth(CGFloat span, NSUInteger contacts)
{
    CGFloat const full = span - 20;
    if (!hostState().initPrefs->isDynamicSize)
        return full;
    return static_cast<int>(full / 5 * static_cast<CGFloat>(std::min<NSUInteger>(contacts, 5)));
}

// False when there is nobody to show; the window has been made all the same.
bool createOverlay(AdjunctListViewController controller, Path const& path)
{
    HostState& host = hostState();
    host.windowForLSView = objc::adopt(BAContainingWindow::alloc().send<"initWithFrame:", BAContainingWindow>(
        UIScreen::mainScreen().bounds()));
    NSUInteger const contacts = readContactList().count();
    if (contacts == 0)
        return false;

    CGFloat const width = stripWidth(path.span, contacts);
    CGRect const frame = path.portrait ? CGRectMake(10, path.start, width, kOverlayStripHeight)
                                       : CGRectMake(path.start, path.across, width, kOverlayStripHeight);
    host.overlayView = objc::adopt(CVLView::alloc().send<"initWithFrame:prefs:nonLSView:", CVLView>(
        frame, host.initPrefs.get(), BOOL(true)));
    if (!host.overlayView)
        return false;
    if (!path.portrait)
        host.overlayView->send<"rotateView">();

    auto const swipe = objc::adopt(UISwipeGestureRecognizer::alloc().initWithTarget<UISwipeGestureRecognizer>(
        controller, objc::selector<"cvlViewSwipeUp">()));
    swipe->setDirection(UISwipeGestureRecognizerDirectionUp);
    host.overlayView->addGestureRecognizer(swipe);
    return true;
}

void placeAtStart(CVLView strip, Path const& path, CGSize screen)
{
    CGRect frame = strip.frame();
    (path.portrait ? frame.origin.y : frame.origin.x) = path.start;
    strip.setFrame(frame);
    CGPoint center = strip.center();
    if (path.portrait)
        center.x = path.span * 0.5;
    else
        center.y = screen.width * 0.5;
    strip.setCenter(center);
}

}

void activatorNONLS(AdjunctListViewController self, SEL)
{
    HostState& host = hostState();
    NSInteger const orientation = frontMostAppOrientation();
    CGSize const screen = UIScreen::mainScreen().bounds().size;
    Path const path = pathFor(orientation, screen);
    if (host.overlayView->send<"isShown", BOOL>()) {
        self.send<"cvlViewSwipeUp">();
        return;
    }
    if (!host.overlayView && !createOverlay(self, path))
        return;

    CVLView const strip = host.overlayView;
    placeAtStart(strip, path, screen);
    float const alpha = settings().viewAlphaLS;
    strip.send<"setBlurrEffectAlphaNonLS:">(alpha == -1.0f ? CGFloat(1) : CGFloat(alpha));
    strip.send<"setBlurrEffectColorNonLS:">(settings().mainViewColorNonLS);
    auto const slideIn = objc::block([strip = objc::retain(strip), path] {
        CGRect frame = strip->frame();
        (path.portrait ? frame.origin.y : frame.origin.x) = path.end;
        strip->setFrame(frame);
        strip->send<"setIsShown:">(BOOL(true));
    });
    UIView::animate(0.3, /* delay: */ 0, kShowAnimationOptions, lent(slideIn), {});
    // Shown again within its dismissal: the finished dismissal must not take away what has just come.
    strip.noteShowing();
    host.windowForLSView->rootViewController().view().addSubview(strip);
}

void cvlViewSwipeUp(AdjunctListViewController, SEL)
{
    CVLView const strip = hostState().overlayView;
    strip.send<"makeBannerGone">();
    strip.send<"setIsShown:">(BOOL(false));
}
