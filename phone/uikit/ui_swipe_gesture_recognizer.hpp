// UISwipeGestureRecognizer: a quick straight stroke. Discrete; the finger need not lift. Main thread.
#pragma once

#include "phone/uikit/ui_gesture_recognizer.hpp"

namespace phone {

// UISwipeGestureRecognizerDirection
namespace SwipeDirection {
inline constexpr NSUInteger right = 1, left = 2, up = 4, down = 8;
}

struct SwipeState {
    NSUInteger direction { SwipeDirection::right };   // one bit; several: any of them
    NSUInteger touchesRequired { 1 };
    CGPoint start {};   // in the view's space
    double startTime { 0 };
};

struct UISwipeGestureRecognizer
    : objc::subclass<UISwipeGestureRecognizer, "UISwipeGestureRecognizer", UIGestureRecognizer> {
    using subclass::subclass;

    NSUInteger direction() const;
    void setDirection(NSUInteger direction) const;
    NSUInteger numberOfTouchesRequired() const;
    void setNumberOfTouchesRequired(NSUInteger count) const;

    void touchesBegan(NSSet touches, UIEvent event) const;
    void touchesMoved(NSSet touches, UIEvent event) const;

private:
    CGPoint position() const;
    SwipeState& swipe() const { return objc::state<SwipeState>(*this); }
};

void defineUISwipeGestureRecognizer();

}
