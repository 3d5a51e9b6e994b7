// The strip's sizes, its rotation with the front-most application, and its dismissal.
#include "objc/define.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/strip_geometry.hpp"
#include "plugin/strip/strip_state.hpp"

#include "platform/springboard.hpp"

#include <numbers>

namespace {

constexpr CGFloat kSlotHeight = 65.0;
constexpr double kRotateSeconds = 0.3;
constexpr double kDismissSeconds = 0.2;
constexpr CGFloat kRotatedStripHeight = 88;
constexpr CGFloat kOffScreen = 100.0;   // beyond the edge

struct Placement {
    CGPoint origin;
    CGAffineTransform transform;
};

CGFloat integerPart(CGFloat value) { return static_cast<CGFloat>(static_cast<int>(value)); }

Placement placementFor(NSInteger orientation, CGSize screen)
{
    switch (orientation) {
    case UIInterfaceOrientationLandscapeRight:
        return { { integerPart(screen.height - kRotatedStripHeight - 10),
                     integerPart(screen.width / kLandscapeDivisor) },
            CGAffineTransformMakeRotation(std::numbers::pi / 2) };
    case UIInterfaceOrientationLandscapeLeft:
        return { { 10, integerPart(screen.height * 0.5) },
            CGAffineTransformMakeRotation(-std::numbers::pi / 2) };
    default: return { { 10, 40 }, CGAffineTransformIdentity };
    }
}

}

CGSize CVLView::sizeForItem(UICollectionView, objc::handle, NSIndexPath) const
{
    CGFloat const width = stripState().referenceWidth;
    bool const banded = stripState().mainPrefsStruct->bannerStyle == kBandedStyle && !isViewNonLS();
    return { (banded ? width : width - kScreenMargin) / kSlots, kSlotHeight };
}

UIEdgeInsets CVLView::insetForSection(UICollectionView, objc::handle, NSInteger) const { return {}; }
CGFloat CVLView::minimumLineSpacing(UICollectionView, objc::handle, NSInteger) const { return 0.0; }

// The buttons take the touches.
BOOL CVLView::shouldSelectItem(UICollectionView, NSIndexPath) const { return false; }

void CVLView::viewDidLayoutSubviews() const { collectionViewLayout().invalidateLayout(); }

void CVLView::rotateView() const
{
    NSInteger const orientation = frontMostAppOrientation();
    CGSize const screen = UIScreen::mainScreen().bounds().size;
    auto const turn = objc::block([strip = objc::retain(*this), orientation, screen] {
        auto const [origin, transform] = placementFor(orientation, screen);
        // The transform first: the size that is then read is the turned one, and the bounds stay as they were.
        strip->setTransform(transform);
        strip->setFrame({ origin, strip->frame().size });
        CGPoint center = strip->center();
        (orientation == UIInterfaceOrientationPortrait ? center.x : center.y) = screen.width * 0.5;
        strip->setCenter(center);
    });
    UIView::animate(kRotateSeconds, lent(turn));
}

void CVLView::makeBannerGone() const
{
    if (!isViewNonLS())
        return;
    NSInteger const orientation = frontMostAppOrientation();
    CGFloat const screenHeight = UIScreen::mainScreen().bounds().size.height;
    auto const slideOut = objc::block([strip = objc::retain(*this), orientation, screenHeight] {
        CGRect frame = strip->frame();
        if (orientation == UIInterfaceOrientationPortrait)
            frame.origin.y = -kOffScreen;
        else
            frame.origin.x =
                orientation == UIInterfaceOrientationLandscapeLeft ? -kOffScreen : screenHeight + kOffScreen;
        strip->setFrame(frame);
    });
    NSUInteger const showing = objc::ivar<NSUInteger, "_showings">(*this);
    auto const leave = objc::block([strip = objc::retain(*this), showing](BOOL) {
        if (objc::ivar<NSUInteger, "_showings">(strip.get()) == showing)
            strip->removeFromSuperview();
    });
    UIView::animate(kDismissSeconds, lent(slideOut), lent(leave));
}

void CVLView::noteShowing() const { ++objc::ivar<NSUInteger, "_showings">(*this); }

void CVLView::setBlurrEffectColorNonLS(UIColor color) const
{
    if (isViewNonLS())
        stripState().blurView->setBackgroundColor(color.colorWithAlphaComponent(0.1));
}

void CVLView::setBlurrEffectAlphaNonLS(CGFloat alpha) const
{
    if (isViewNonLS())
        stripState().blurView->setAlpha(alpha);
}
