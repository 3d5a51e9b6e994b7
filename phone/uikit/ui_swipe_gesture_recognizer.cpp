#include "phone/uikit/ui_swipe_gesture_recognizer.hpp"

#include "phone/kernel/services.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

// UIKit publishes no limits; these are what its swipes feel like.
constexpr double kLength = 50;            // points along the direction
constexpr double kSeconds = 0.5;          // from touch to that length
constexpr double kStraightness = 0.6;     // across, as a part of along
constexpr double kAcrossAllowance = 20;   // points across that are never too many

}

NSUInteger UISwipeGestureRecognizer::direction() const { return swipe().direction; }
void UISwipeGestureRecognizer::setDirection(NSUInteger direction) const { swipe().direction = direction; }
NSUInteger UISwipeGestureRecognizer::numberOfTouchesRequired() const { return swipe().touchesRequired; }
void UISwipeGestureRecognizer::setNumberOfTouchesRequired(NSUInteger count) const
{
    swipe().touchesRequired = count;
}

// Directions are those of the view, which may stand turned in its window.
CGPoint UISwipeGestureRecognizer::position() const { return locationInView(view()); }

void UISwipeGestureRecognizer::touchesBegan(NSSet, UIEvent) const
{
    SwipeState& state = swipe();
    if (numberOfTouches() > state.touchesRequired) {
        setState(GestureState::failed);
        return;
    }
    state.start = position();
    state.startTime = clock().now();
}

void UISwipeGestureRecognizer::touchesMoved(NSSet, UIEvent) const
{
    if (!isPossible())
        return;
    SwipeState const& state = swipe();
    CGPoint const moved = position() - state.start;
    double const along = std::max(std::abs(moved.x), std::abs(moved.y));
    double const across = std::min(std::abs(moved.x), std::abs(moved.y));
    if (clock().now() - state.startTime > kSeconds
        || across > std::max(kAcrossAllowance, along * kStraightness)) {
        setState(GestureState::failed);
        return;
    }
    if (along < kLength || numberOfTouches() < state.touchesRequired)
        return;
    NSUInteger const made = std::abs(moved.x) > std::abs(moved.y)
        ? (moved.x > 0 ? SwipeDirection::right : SwipeDirection::left)
        : (moved.y > 0 ? SwipeDirection::down : SwipeDirection::up);
    setState(made & state.direction ? GestureState::ended : GestureState::failed);
}

void defineUISwipeGestureRecognizer()
{
    using Self = UISwipeGestureRecognizer;
    objc::define<Self>()
        .state<SwipeState>()
        .method<"direction", &Self::direction>()
        .method<"setDirection:", &Self::setDirection>()
        .method<"numberOfTouchesRequired", &Self::numberOfTouchesRequired>()
        .method<"setNumberOfTouchesRequired:", &Self::setNumberOfTouchesRequired>()
        .method<"touchesBegan:withEvent:", &Self::touchesBegan>()
        .method<"touchesMoved:withEvent:", &Self::touchesMoved>()
        .install();
}

}
