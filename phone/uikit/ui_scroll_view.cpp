#include "phone/uikit/ui_scroll_view.hpp"

#include "phone/foundation/plugin_call.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/scroll_recognizers.hpp"
#include "phone/uikit/ui_control.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace phone {

namespace {

// After the last turn of the wheel, a paging view goes to a page. Chosen by us.
constexpr double kWheelPause = 0.15;   // seconds

// The delegate's method with the scroll view as its one argument, if it has it.
template <objc::fixed_string Selector>
void tellDelegate(UIScrollView scrollView)
{
    auto const delegate = objc::retain(scrollView.delegate());
    if (!delegate->responds<Selector>())
        return;
    CalloutScope const scope(delegate.get(), objc::selector<Selector>());
    delegate->send<Selector>(scrollView);
}

bool has(PanAxes axes, PanAxes one) { return static_cast<int>(axes) & static_cast<int>(one); }

}

UIScrollView UIScrollView::initWithFrame(CGRect frame) const
{
    UIScrollView const self {
        objc::send_super<UIScrollView, "initWithFrame:", objc::handle>(*this, frame).object
    };
    if (!self)
        return self;
    self.UIView::setClipsToBounds(true);
    self.scrollState().pan = addScrollRecognizers(self);
    return self;
}

CGPoint UIScrollView::contentOffset() const { return bounds().origin; }

void UIScrollView::setContentOffset(CGPoint offset) const
{
    stopMotion();
    applyOffset(offset);
}

// Sets the bounds' origin, and tells.
void UIScrollView::applyOffset(CGPoint offset) const
{
    if (!std::isfinite(offset.x) || !std::isfinite(offset.y))
        return;
    CGRect const before = bounds();
    if (before.origin == offset)
        return;
    UIView::setBounds({ offset, before.size });
    setNeedsLayout();
    tellDelegate<"scrollViewDidScroll:">(*this);
}

void UIScrollView::setContentOffsetAnimated(CGPoint offset, BOOL animated) const
{
    CGPoint const from = contentOffset();
    if (!animated || from == offset) {
        setContentOffset(offset);
        return;
    }
    stopMotion();
    startMotion(ScrollMotion::easing(from.x, offset.x), ScrollMotion::easing(from.y, offset.y),
        /* isAnimation: */ true);
}

void UIScrollView::scrollRectToVisible(CGRect rect, BOOL animated) const
{
    CGRect const visible = inset(bounds(), contentInset());
    auto const reach = [](double low, double length, double from, double size) {
        if (low < from || length > size)
            return low - from;
        return std::max(low + length - (from + size), 0.0);
    };
    CGPoint const offset = contentOffset()
        + CGPoint { reach(rect.origin.x, rect.size.width, visible.origin.x, visible.size.width),
              reach(rect.origin.y, rect.size.height, visible.origin.y, visible.size.height) };
    setContentOffsetAnimated(
        { horizontalRange().clamp(offset.x), verticalRange().clamp(offset.y) }, animated);
}

CGSize UIScrollView::contentSize() const { return scrollState().contentSize; }
void UIScrollView::setContentSize(CGSize size) const
{
    ScrollState& state = scrollState();
    if (state.contentSize == size)
        return;
    state.contentSize = size;
    keepInRange();
}
UIEdgeInsets UIScrollView::contentInset() const { return scrollState().contentInset; }
void UIScrollView::setContentInset(UIEdgeInsets inset) const
{
    ScrollState& state = scrollState();
    if (state.contentInset == inset)
        return;
    // What was at the top (or left) end stays there.
    CGPoint const before = contentOffset();
    CGPoint after = before;
    if (before.y == -state.contentInset.top)
        after.y = -inset.top;
    if (before.x == -state.contentInset.left)
        after.x = -inset.left;
    state.contentInset = inset;
    applyOffset(after);
    keepInRange();
}

// Deviation: UIKit adds the safe area's insets to those of a scroll view that fills its controller's view.
UIEdgeInsets UIScrollView::adjustedContentInset() const { return contentInset(); }

objc::handle UIScrollView::delegate() const { return scrollState().delegate.get(); }
void UIScrollView::setDelegate(objc::handle delegate) const
{
    scrollState().delegate = NSObject { delegate.object };
}

BOOL UIScrollView::isScrollEnabled() const { return scrollState().isScrollEnabled; }
void UIScrollView::setScrollEnabled(BOOL enabled) const
{
    scrollState().isScrollEnabled = enabled;
    scrollState().pan->setEnabled(enabled);
}
BOOL UIScrollView::isPagingEnabled() const { return scrollState().isPagingEnabled; }
void UIScrollView::setPagingEnabled(BOOL enabled) const { scrollState().isPagingEnabled = enabled; }
BOOL UIScrollView::bounces() const { return scrollState().bounces; }
void UIScrollView::setBounces(BOOL bounces) const { scrollState().bounces = bounces; }
BOOL UIScrollView::alwaysBounceHorizontal() const { return scrollState().alwaysBouncesHorizontally; }
void UIScrollView::setAlwaysBounceHorizontal(BOOL bounces) const
{
    scrollState().alwaysBouncesHorizontally = bounces;
}
BOOL UIScrollView::alwaysBounceVertical() const { return scrollState().alwaysBouncesVertically; }
void UIScrollView::setAlwaysBounceVertical(BOOL bounces) const
{
    scrollState().alwaysBouncesVertically = bounces;
}
BOOL UIScrollView::showsHorizontalScrollIndicator() const { return scrollState().showsHorizontalIndicator; }
void UIScrollView::setShowsHorizontalScrollIndicator(BOOL shows) const
{
    scrollState().showsHorizontalIndicator = shows;
}
BOOL UIScrollView::showsVerticalScrollIndicator() const { return scrollState().showsVerticalIndicator; }
void UIScrollView::setShowsVerticalScrollIndicator(BOOL shows) const
{
    scrollState().showsVerticalIndicator = shows;
}
BOOL UIScrollView::delaysContentTouches() const { return scrollState().delaysContentTouches; }
void UIScrollView::setDelaysContentTouches(BOOL delays) const { scrollState().delaysContentTouches = delays; }
BOOL UIScrollView::canCancelContentTouches() const { return scrollState().canCancelContentTouches; }
void UIScrollView::setCanCancelContentTouches(BOOL can) const { scrollState().canCancelContentTouches = can; }
CGFloat UIScrollView::decelerationRate() const { return scrollState().decelerationRate; }
void UIScrollView::setDecelerationRate(CGFloat rate) const
{
    double const middle = (kDecelerationRateNormal + kDecelerationRateFast) / 2;
    scrollState().decelerationRate = rate < middle ? kDecelerationRateFast : kDecelerationRateNormal;
}
BOOL UIScrollView::isTracking() const { return scrollState().isTracking; }
BOOL UIScrollView::isDragging() const { return scrollState().isDragging; }
BOOL UIScrollView::isDecelerating() const { return scrollState().isDecelerating; }
UIPanGestureRecognizer UIScrollView::panGestureRecognizer() const { return scrollState().pan; }
bool UIScrollView::isInMotion() const { return scrollState().frames != FrameObserverId::none; }

BOOL UIScrollView::touchesShouldCancelInContentView(UIView view) const
{
    return !objc::cast<UIControl>(view);
}

ScrollRange UIScrollView::horizontalRange() const
{
    UIEdgeInsets const inset = contentInset();
    double const end = contentSize().width + inset.right - bounds().size.width;
    return { -inset.left, std::max(end, -inset.left) };
}

ScrollRange UIScrollView::verticalRange() const
{
    UIEdgeInsets const inset = contentInset();
    double const end = contentSize().height + inset.bottom - bounds().size.height;
    return { -inset.top, std::max(end, -inset.top) };
}

PanAxes UIScrollView::scrollableAxes() const
{
    ScrollState const& state = scrollState();
    if (!state.isScrollEnabled)
        return PanAxes::none;
    auto const scrolls = [&state](ScrollRange range, bool always) {
        return range.maximum > range.minimum || (state.bounces && always);
    };
    int axes = 0;
    if (scrolls(horizontalRange(), state.alwaysBouncesHorizontally))
        axes |= static_cast<int>(PanAxes::horizontal);
    if (scrolls(verticalRange(), state.alwaysBouncesVertically))
        axes |= static_cast<int>(PanAxes::vertical);
    return static_cast<PanAxes>(axes);
}

// A content or a view that became smaller must not leave the offset past the end.
void UIScrollView::keepInRange() const
{
    ScrollState const& state = scrollState();
    if (state.isDragging || isInMotion())
        return;
    CGPoint const offset = contentOffset();
    applyOffset({ horizontalRange().clamp(offset.x), verticalRange().clamp(offset.y) });
}

void UIScrollView::handlePan(UIPanGestureRecognizer pan) const
{
    ScrollState& state = scrollState();
    switch (pan.state()) {
    case GestureState::began: beginDrag(); [[fallthrough]];
    case GestureState::changed: {
        PanAxes const axes = scrollableAxes();
        CGPoint const moved = pan.translationInView(*this);
        CGSize const size = bounds().size;
        CGPoint offset = contentOffset();
        if (has(axes, PanAxes::horizontal))
            offset.x =
                draggedOffset(state.wantedAtStart.x - moved.x, horizontalRange(), size.width, state.bounces);
        if (has(axes, PanAxes::vertical))
            offset.y =
                draggedOffset(state.wantedAtStart.y - moved.y, verticalRange(), size.height, state.bounces);
        applyOffset(offset);
        showScrollIndicators(*this);
        return;
    }
    case GestureState::ended:
    case GestureState::cancelled: endDrag(); return;
    default: return;
    }
}

void UIScrollView::beginDrag() const
{
    ScrollState& state = scrollState();
    stopMotion();
    state.isDragging = true;
    CGPoint const offset = contentOffset();
    CGSize const size = bounds().size;
    state.wantedAtStart = { wantedOffset(offset.x, horizontalRange(), size.width),
        wantedOffset(offset.y, verticalRange(), size.height) };
    tellDelegate<"scrollViewWillBeginDragging:">(*this);
}

void UIScrollView::endDrag() const
{
    ScrollState& state = scrollState();
    if (!state.isDragging)
        return;
    PanAxes const axes = scrollableAxes();
    CGPoint const finger = state.pan->velocityInView(*this);
    CGPoint const velocity { has(axes, PanAxes::horizontal) ? -finger.x : 0,
        has(axes, PanAxes::vertical) ? -finger.y : 0 };
    CGPoint const offset = contentOffset();
    CGSize const size = bounds().size;

    auto const motion = [&state](double from, double speed, ScrollRange range, double length) {
        if (state.isPagingEnabled && range.contains(from))
            return ScrollMotion::settling(from, speed, pageOffset(from, speed, range, length));
        return ScrollMotion::coasting(from, speed, range, state.bounces, state.decelerationRate);
    };
    ScrollMotion horizontal = motion(offset.x, velocity.x, horizontalRange(), size.width);
    ScrollMotion vertical = motion(offset.y, velocity.y, verticalRange(), size.height);

    auto const delegate = objc::retain(this->delegate());
    if (delegate->responds<"scrollViewWillEndDragging:withVelocity:targetContentOffset:">()) {
        CGPoint const target { horizontal.rest(), vertical.rest() };
        CGPoint wanted = target;
        // The delegate gets points per millisecond.
        CGPoint const perMillisecond { velocity.x / 1000, velocity.y / 1000 };
        delegate->send<"scrollViewWillEndDragging:withVelocity:targetContentOffset:">(
            *this, perMillisecond, &wanted);
        if (wanted != target) {
            horizontal = ScrollMotion::settling(offset.x, velocity.x, wanted.x);
            vertical = ScrollMotion::settling(offset.y, velocity.y, wanted.y);
        }
    }
    state.isDragging = false;
    bool const decelerates = horizontal.moves() || vertical.moves();
    if (delegate->responds<"scrollViewDidEndDragging:willDecelerate:">()) {
        CalloutScope const scope(
            delegate.get(), objc::selector<"scrollViewDidEndDragging:willDecelerate:">());
        delegate->send<"scrollViewDidEndDragging:willDecelerate:">(*this, BOOL { decelerates });
    }
    if (decelerates)
        startMotion(horizontal, vertical, /* isAnimation: */ false);
}

void UIScrollView::startMotion(ScrollMotion horizontal, ScrollMotion vertical, bool isAnimation) const
{
    ScrollState& state = scrollState();
    state.horizontal = horizontal;
    state.vertical = vertical;
    state.motionStart = clock().now();
    state.isAnimating = isAnimation;
    state.isDecelerating = !isAnimation;
    if (!isAnimation)
        tellDelegate<"scrollViewWillBeginDecelerating:">(*this);
    state.frames = clock().addFrameObserver([weak = Weak(*this)](double now) {
        auto const self = objc::retain(weak.get());
        if (!self)
            return false;
        AutoreleasePool const pool;
        return self->runMotion(now);
    });
}

void UIScrollView::stopMotion() const
{
    ScrollState& state = scrollState();
    clock().cancel(std::exchange(state.wheelEnd, TimerId::none));
    if (state.frames == FrameObserverId::none)
        return;
    clock().removeFrameObserver(std::exchange(state.frames, FrameObserverId::none));
    state.isAnimating = state.isDecelerating = false;
}

// Answers whether it goes on.
bool UIScrollView::runMotion(double now) const
{
    ScrollState& state = scrollState();
    FrameObserverId const mine = state.frames;
    double const seconds = now - state.motionStart;
    applyOffset({ state.horizontal.at(seconds), state.vertical.at(seconds) });
    showScrollIndicators(*this);
    // The delegate may have stopped it, or begun another.
    if (state.frames != mine)
        return false;
    if (seconds < std::max(state.horizontal.duration(), state.vertical.duration()))
        return true;
    state.frames = FrameObserverId::none;
    state.isDecelerating = false;
    if (std::exchange(state.isAnimating, false))
        tellDelegate<"scrollViewDidEndScrollingAnimation:">(*this);
    else
        tellDelegate<"scrollViewDidEndDecelerating:">(*this);
    return false;
}

bool UIScrollView::scrollByWheel(double dx, double dy) const
{
    ScrollState& state = scrollState();
    PanAxes const axes = scrollableAxes();
    if (axes == PanAxes::none || state.isDragging)
        return false;
    if (axes == PanAxes::horizontal && dx == 0)
        dx = dy;
    CGPoint const from = contentOffset();
    CGPoint to = from;
    if (has(axes, PanAxes::horizontal))
        to.x = horizontalRange().clamp(from.x + dx);
    if (has(axes, PanAxes::vertical))
        to.y = verticalRange().clamp(from.y + dy);
    if (to == from)
        return false;
    setContentOffset(to);
    showScrollIndicators(*this);
    if (state.isPagingEnabled)
        state.wheelEnd = clock().at(kWheelPause, 0, [weak = Weak(*this)] {
            AutoreleasePool const pool;
            if (auto const self = objc::retain(weak.get()))
                self->settleOnPage();
        });
    return true;
}

void UIScrollView::settleOnPage() const
{
    scrollState().wheelEnd = TimerId::none;
    CGPoint const offset = contentOffset();
    CGSize const size = bounds().size;
    setContentOffsetAnimated({ pageOffset(offset.x, 0, horizontalRange(), size.width),
                                 pageOffset(offset.y, 0, verticalRange(), size.height) },
        /* animated: */ true);
}

void defineUIScrollView()
{
    defineScrollRecognizers();
    objc::define<UIScrollView>()
        .state<ScrollState>()
        .method<"initWithFrame:", &UIScrollView::initWithFrame>()
        .method<"contentOffset", &UIScrollView::contentOffset>()
        .method<"setContentOffset:", &UIScrollView::setContentOffset>()
        .method<"setContentOffset:animated:", &UIScrollView::setContentOffsetAnimated>()
        .method<"scrollRectToVisible:animated:", &UIScrollView::scrollRectToVisible>()
        .method<"contentSize", &UIScrollView::contentSize>()
        .method<"setContentSize:", &UIScrollView::setContentSize>()
        .method<"contentInset", &UIScrollView::contentInset>()
        .method<"setContentInset:", &UIScrollView::setContentInset>()
        .method<"adjustedContentInset", &UIScrollView::adjustedContentInset>()
        .method<"delegate", &UIScrollView::delegate>()
        .method<"setDelegate:", &UIScrollView::setDelegate>()
        .method<"isScrollEnabled", &UIScrollView::isScrollEnabled>()
        .method<"setScrollEnabled:", &UIScrollView::setScrollEnabled>()
        .method<"isPagingEnabled", &UIScrollView::isPagingEnabled>()
        .method<"setPagingEnabled:", &UIScrollView::setPagingEnabled>()
        .method<"bounces", &UIScrollView::bounces>()
        .method<"setBounces:", &UIScrollView::setBounces>()
        .method<"alwaysBounceHorizontal", &UIScrollView::alwaysBounceHorizontal>()
        .method<"setAlwaysBounceHorizontal:", &UIScrollView::setAlwaysBounceHorizontal>()
        .method<"alwaysBounceVertical", &UIScrollView::alwaysBounceVertical>()
        .method<"setAlwaysBounceVertical:", &UIScrollView::setAlwaysBounceVertical>()
        .method<"showsHorizontalScrollIndicator", &UIScrollView::showsHorizontalScrollIndicator>()
        .method<"setShowsHorizontalScrollIndicator:", &UIScrollView::setShowsHorizontalScrollIndicator>()
        .method<"showsVerticalScrollIndicator", &UIScrollView::showsVerticalScrollIndicator>()
        .method<"setShowsVerticalScrollIndicator:", &UIScrollView::setShowsVerticalScrollIndicator>()
        .method<"delaysContentTouches", &UIScrollView::delaysContentTouches>()
        .method<"setDelaysContentTouches:", &UIScrollView::setDelaysContentTouches>()
        .method<"canCancelContentTouches", &UIScrollView::canCancelContentTouches>()
        .method<"setCanCancelContentTouches:", &UIScrollView::setCanCancelContentTouches>()
        .method<"decelerationRate", &UIScrollView::decelerationRate>()
        .method<"setDecelerationRate:", &UIScrollView::setDecelerationRate>()
        .method<"isTracking", &UIScrollView::isTracking>()
        .method<"isDragging", &UIScrollView::isDragging>()
        .method<"isDecelerating", &UIScrollView::isDecelerating>()
        .method<"panGestureRecognizer", &UIScrollView::panGestureRecognizer>()
        .method<"touchesShouldCancelInContentView:", &UIScrollView::touchesShouldCancelInContentView>()
        .method<"handlePan:", &UIScrollView::handlePan>()
        .install();
}

}
