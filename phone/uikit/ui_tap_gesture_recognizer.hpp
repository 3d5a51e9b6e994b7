// UITapGestureRecognizer: one tap or several in a row. Discrete. Main thread.
#pragma once

#include "phone/kernel/clock.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"

namespace phone {

struct TapState {
    NSUInteger tapsRequired { 1 };
    NSUInteger touchesRequired { 1 };
    NSUInteger taps { 0 };
    CGPoint start {};
    TimerId timer {};   // a press that lasts, or a further tap that doesn't come
};

struct UITapGestureRecognizer
    : objc::subclass<UITapGestureRecognizer, "UITapGestureRecognizer", UIGestureRecognizer> {
    using subclass::subclass;

    NSUInteger numberOfTapsRequired() const;
    void setNumberOfTapsRequired(NSUInteger count) const;
    NSUInteger numberOfTouchesRequired() const;
    void setNumberOfTouchesRequired(NSUInteger count) const;

    void reset() const;
    void touchesBegan(NSSet touches, UIEvent event) const;
    void touchesMoved(NSSet touches, UIEvent event) const;
    void touchesEnded(NSSet touches, UIEvent event) const;

private:
    void failAfter(double seconds) const;
    TapState& tap() const { return objc::state<TapState>(*this); }
};

void defineUITapGestureRecognizer();

}
