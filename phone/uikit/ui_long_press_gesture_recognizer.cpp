#include "phone/uikit/ui_long_press_gesture_recognizer.hpp"

#include "phone/kernel/services.hpp"
#include "phone/uikit/touch_delivery.hpp"

#include <cmath>

namespace phone {

double UILongPressGestureRecognizer::minimumPressDuration() const { return longPress().minimumPressDuration; }
void UILongPressGestureRecognizer::setMinimumPressDuration(double seconds) const
{
    longPress().minimumPressDuration = seconds;
}
CGFloat UILongPressGestureRecognizer::allowableMovement() const { return longPress().allowableMovement; }
void UILongPressGestureRecognizer::setAllowableMovement(CGFloat points) const
{
    longPress().allowableMovement = points;
}
NSUInteger UILongPressGestureRecognizer::numberOfTouchesRequired() const
{
    return longPress().touchesRequired;
}
void UILongPressGestureRecognizer::setNumberOfTouchesRequired(NSUInteger count) const
{
    longPress().touchesRequired = count;
}
NSUInteger UILongPressGestureRecognizer::numberOfTapsRequired() const { return longPress().tapsRequired; }
void UILongPressGestureRecognizer::setNumberOfTapsRequired(NSUInteger count) const
{
    longPress().tapsRequired = count;
}

void UILongPressGestureRecognizer::reset() const
{
    clock().cancel(longPress().timer);
    longPress().timer = TimerId::none;
}

void UILongPressGestureRecognizer::touchesBegan(NSSet touches, UIEvent) const
{
    LongPressState& press = longPress();
    if (!isPossible())
        return;
    UITouch const first { touches.anyObject().object };
    if (numberOfTouches() > press.touchesRequired || first.tapCount() < press.tapsRequired + 1) {
        // Too many fingers, or the taps that should come before are still to be made.
        setState(GestureState::failed);
        return;
    }
    if (numberOfTouches() < press.touchesRequired)
        return;
    press.start = middleOf(recognizerState().touches);
    clock().cancel(press.timer);
    press.timer = clock().at(press.minimumPressDuration, 0, [weak = Weak(*this)] {
        auto const self = objc::retain(weak.get());
        if (!self)
            return;
        AutoreleasePool const pool;
        self->longPress().timer = TimerId::none;
        self->setState(GestureState::began);
        touchDelivery().settle();
    });
}

void UILongPressGestureRecognizer::touchesMoved(NSSet, UIEvent) const
{
    if (!isPossible()) {
        setState(GestureState::changed);
        return;
    }
    CGPoint const now = middleOf(recognizerState().touches);
    LongPressState const& press = longPress();
    if (std::hypot(now.x - press.start.x, now.y - press.start.y) > press.allowableMovement)
        setState(GestureState::failed);
}

void UILongPressGestureRecognizer::touchesEnded(NSSet, UIEvent) const
{
    setState(isPossible() ? GestureState::failed : GestureState::ended);
}

void UILongPressGestureRecognizer::touchesCancelled(NSSet, UIEvent) const
{
    setState(GestureState::cancelled);
}

void defineUILongPressGestureRecognizer()
{
    using Self = UILongPressGestureRecognizer;
    objc::define<Self>()
        .state<LongPressState>()
        .method<"minimumPressDuration", &Self::minimumPressDuration>()
        .method<"setMinimumPressDuration:", &Self::setMinimumPressDuration>()
        .method<"allowableMovement", &Self::allowableMovement>()
        .method<"setAllowableMovement:", &Self::setAllowableMovement>()
        .method<"numberOfTouchesRequired", &Self::numberOfTouchesRequired>()
        .method<"setNumberOfTouchesRequired:", &Self::setNumberOfTouchesRequired>()
        .method<"numberOfTapsRequired", &Self::numberOfTapsRequired>()
        .method<"setNumberOfTapsRequired:", &Self::setNumberOfTapsRequired>()
        .method<"reset", &Self::reset>()
        .method<"touchesBegan:withEvent:", &Self::touchesBegan>()
        .method<"touchesMoved:withEvent:", &Self::touchesMoved>()
        .method<"touchesEnded:withEvent:", &Self::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &Self::touchesCancelled>()
        .install();
}

}
