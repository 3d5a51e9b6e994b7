#include "phone/uikit/ui_tap_gesture_recognizer.hpp"

#include "phone/kernel/services.hpp"
#include "phone/uikit/touch_delivery.hpp"

#include <cmath>

namespace phone {

namespace {

// UIKit's recogniser describes itself with these numbers on a phone.
constexpr double kMaximumTapSeconds = 0.75;
constexpr double kMaximumPauseSeconds = 0.35;
constexpr double kAllowableMovement = 45;   // points

}

NSUInteger UITapGestureRecognizer::numberOfTapsRequired() const { return tap().tapsRequired; }
void UITapGestureRecognizer::setNumberOfTapsRequired(NSUInteger count) const { tap().tapsRequired = count; }
NSUInteger UITapGestureRecognizer::numberOfTouchesRequired() const { return tap().touchesRequired; }
void UITapGestureRecognizer::setNumberOfTouchesRequired(NSUInteger count) const
{
    tap().touchesRequired = count;
}

void UITapGestureRecognizer::reset() const
{
    TapState& state = tap();
    clock().cancel(state.timer);
    state.timer = TimerId::none;
    state.taps = 0;
}

void UITapGestureRecognizer::failAfter(double seconds) const
{
    clock().cancel(tap().timer);
    tap().timer = clock().at(seconds, 0, [weak = Weak(*this)] {
        auto const self = objc::retain(weak.get());
        if (!self)
            return;
        AutoreleasePool const pool;
        self->tap().timer = TimerId::none;
        self->setState(GestureState::failed);
        touchDelivery().settle();
    });
}

void UITapGestureRecognizer::touchesBegan(NSSet, UIEvent) const
{
    if (!isPossible())
        return;
    if (numberOfTouches() > tap().touchesRequired) {
        setState(GestureState::failed);
        return;
    }
    tap().start = middleOf(recognizerState().touches);
    failAfter(kMaximumTapSeconds);
}

void UITapGestureRecognizer::touchesMoved(NSSet, UIEvent) const
{
    CGPoint const now = middleOf(recognizerState().touches);
    if (std::hypot(now.x - tap().start.x, now.y - tap().start.y) > kAllowableMovement)
        setState(GestureState::failed);
}

void UITapGestureRecognizer::touchesEnded(NSSet, UIEvent) const
{
    TapState& state = tap();
    if (!isPossible() || numberOfTouches() < state.touchesRequired) {
        setState(GestureState::failed);
        return;
    }
    if (++state.taps < state.tapsRequired)
        failAfter(kMaximumPauseSeconds);
    else
        setState(GestureState::ended);
}

void defineUITapGestureRecognizer()
{
    using Self = UITapGestureRecognizer;
    objc::define<Self>()
        .state<TapState>()
        .method<"numberOfTapsRequired", &Self::numberOfTapsRequired>()
        .method<"setNumberOfTapsRequired:", &Self::setNumberOfTapsRequired>()
        .method<"numberOfTouchesRequired", &Self::numberOfTouchesRequired>()
        .method<"setNumberOfTouchesRequired:", &Self::setNumberOfTouchesRequired>()
        .method<"reset", &Self::reset>()
        .method<"touchesBegan:withEvent:", &Self::touchesBegan>()
        .method<"touchesMoved:withEvent:", &Self::touchesMoved>()
        .method<"touchesEnded:withEvent:", &Self::touchesEnded>()
        .install();
}

}
