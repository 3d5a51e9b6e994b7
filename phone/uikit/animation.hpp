// UIView's block animations on the phone's clock. A property set inside `changes` has its new model value at
// once; what is drawn goes there along the curve. Main thread.
#pragma once

#include "phone/uikit/ui_view.hpp"

#include <functional>

namespace phone {

// UIViewAnimationOptions
namespace AnimationOption {
inline constexpr NSUInteger layoutSubviews = 1, allowUserInteraction = 2, beginFromCurrentState = 4,
                            repeat = 8, autoreverse = 16, overrideInheritedDuration = 32,
                            overrideInheritedCurve = 64;
inline constexpr NSUInteger curveEaseInOut = 0 << 16, curveEaseIn = 1 << 16, curveEaseOut = 2 << 16,
                            curveLinear = 3 << 16, curveMask = 15 << 16;
}

// Runs `changes` now. `completion(finished)` comes when the last property has arrived; at the end of this
// turn when nothing is animated; at once, and without animation, for a duration (and delay) of zero or less.
// finished is false when all of its animations were removed with their views. These record no trace.
void animate(double duration, std::function<void()> changes, std::function<void(bool)> completion = {});
void animateWithOptions(double duration, double delay, NSUInteger options, std::function<void()> changes,
    std::function<void(bool)> completion = {});
void animateWithSpring(double duration, double delay, double damping, double initialVelocity,
    NSUInteger options, std::function<void()> changes, std::function<void(bool)> completion = {});
void performWithoutAnimation(std::function<void()> changes);

// Is code inside `changes` of an animation now?
bool isInsideAnimationBlock();

// Animations running on any view.
bool hasRunningAnimations();
// Drops those of this view (its model values show at once); their completions get false.
void removeAllAnimations(UIView view);

// Rows of UIView's table, with the trace's `animate`.
struct AnimationMethods;
void defineAnimation();

}
