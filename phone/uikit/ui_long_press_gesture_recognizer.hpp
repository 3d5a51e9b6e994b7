// UILongPressGestureRecognizer: a finger that rests. Begins while the finger is still down, changes as it
// moves on, ends when it lifts. Times on the phone's clock. Main thread.
#pragma once

#include "phone/kernel/clock.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"

namespace phone {

struct LongPressState {
    double minimumPressDuration { 0.5 };   // seconds
    double allowableMovement { 10 };       // points, before it begins
    NSUInteger touchesRequired { 1 };
    NSUInteger tapsRequired { 0 };   // full taps before the press
    CGPoint start {};
    TimerId timer {};
};

struct UILongPressGestureRecognizer
    : objc::subclass<UILongPressGestureRecognizer, "UILongPressGestureRecognizer", UIGestureRecognizer> {
    using subclass::subclass;

    double minimumPressDuration() const;
    void setMinimumPressDuration(double seconds) const;
    CGFloat allowableMovement() const;
    void setAllowableMovement(CGFloat points) const;
    NSUInteger numberOfTouchesRequired() const;
    void setNumberOfTouchesRequired(NSUInteger count) const;
    NSUInteger numberOfTapsRequired() const;
    void setNumberOfTapsRequired(NSUInteger count) const;

    void reset() const;
    void touchesBegan(NSSet touches, UIEvent event) const;
    void touchesMoved(NSSet touches, UIEvent event) const;
    void touchesEnded(NSSet touches, UIEvent event) const;
    void touchesCancelled(NSSet touches, UIEvent event) const;

private:
    LongPressState& longPress() const { return objc::state<LongPressState>(*this); }
};

void defineUILongPressGestureRecognizer();

}
