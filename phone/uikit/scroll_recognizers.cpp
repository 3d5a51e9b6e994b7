#include "phone/uikit/scroll_recognizers.hpp"

#include "phone/kernel/services.hpp"
#include "phone/uikit/touch_delivery.hpp"

#include <algorithm>
#include <utility>

namespace phone {

// Once the content knows of a finger, the content decides.
bool UIScrollViewPanGestureRecognizer::mayTakeTouches() const
{
    UIScrollView const scrollView = this->scrollView();
    return std::ranges::none_of(recognizerState().touches, [scrollView](auto const& touch) {
        UIView const content = touch->view();
        return content != scrollView && touchDelivery().hasBegunInView(touch)
            && (!scrollView.canCancelContentTouches()
                || !scrollView.send<"touchesShouldCancelInContentView:", BOOL>(content));
    });
}

void UIScrollViewPanGestureRecognizer::touchesBegan(NSSet touches, UIEvent event) const
{
    UIScrollView const scrollView = this->scrollView();
    scrollView.scrollState().isTracking = true;
    UIPanGestureRecognizer::touchesBegan(touches, event);
    if (isPossible() && scrollView.isInMotion())
        setState(GestureState::began);
}

void UIScrollViewPanGestureRecognizer::touchesMoved(NSSet, UIEvent) const
{
    if (isPossible() && !mayTakeTouches()) {
        setState(GestureState::failed);
        return;
    }
    follow(scrollView().scrollableAxes());
}

void UIScrollViewPanGestureRecognizer::reset() const
{
    if (view())
        scrollView().scrollState().isTracking = false;
    UIPanGestureRecognizer::reset();
}

void UIScrollViewDelayedTouchesBeganGestureRecognizer::touchesBegan(NSSet, UIEvent) const
{
    UIScrollView const scrollView { view().object };
    if (!scrollView.delaysContentTouches() || !scrollView.isScrollEnabled()) {
        setState(GestureState::failed);
        return;
    }
    clock().cancel(delay().timer);
    delay().timer = clock().at(kContentTouchDelay, 0, [weak = Weak(*this)] {
        auto const self = objc::retain(weak.get());
        if (!self)
            return;
        AutoreleasePool const pool;
        self->delay().timer = TimerId::none;
        self->setState(GestureState::failed);
        touchDelivery().settle();
    });
}

void UIScrollViewDelayedTouchesBeganGestureRecognizer::reset() const
{
    clock().cancel(std::exchange(delay().timer, TimerId::none));
}

objc::ref<UIPanGestureRecognizer> addScrollRecognizers(UIScrollView scrollView)
{
    using Delayed = UIScrollViewDelayedTouchesBeganGestureRecognizer;
    using Pan = UIScrollViewPanGestureRecognizer;
    auto const delayed = objc::adopt(Delayed { Delayed::alloc().send<"init", objc::handle>().object });
    delayed->setDelaysTouchesBegan(true);
    delayed->setDelaysTouchesEnded(false);
    delayed->setCancelsTouchesInView(false);
    scrollView.addGestureRecognizer(delayed.get());

    auto const pan = objc::adopt(
        Pan { Pan::alloc()
                  .send<"initWithTarget:action:", objc::handle>(scrollView, objc::selector<"handlePan:">())
                  .object });
    pan->setDelaysTouchesEnded(false);
    scrollView.addGestureRecognizer(pan.get());
    return objc::retain(UIPanGestureRecognizer { pan.get().object });
}

void defineScrollRecognizers()
{
    objc::define<UIScrollViewPanGestureRecognizer>()
        .method<"touchesBegan:withEvent:", &UIScrollViewPanGestureRecognizer::touchesBegan>()
        .method<"touchesMoved:withEvent:", &UIScrollViewPanGestureRecognizer::touchesMoved>()
        .method<"reset", &UIScrollViewPanGestureRecognizer::reset>()
        .install();
    objc::define<UIScrollViewDelayedTouchesBeganGestureRecognizer>()
        .state<DelayedTouchesState>()
        .method<"touchesBegan:withEvent:", &UIScrollViewDelayedTouchesBeganGestureRecognizer::touchesBegan>()
        .method<"reset", &UIScrollViewDelayedTouchesBeganGestureRecognizer::reset>()
        .install();
}

}
