// UIPanGestureRecognizer: a finger that drags. Begins once it has moved by the slop. Main thread.
#pragma once

#include "phone/uikit/ui_gesture_recognizer.hpp"

#include <deque>

namespace phone {

inline constexpr double kPanSlop = 10;   // points before a finger counts as dragging

// Which movements make a pan begin; a scroll view narrows it.
enum class PanAxes { none = 0, horizontal = 1, vertical = 2, both = 3 };

struct PanState {
    struct Sample {
        double time;
        CGPoint location;   // on the screen
    };
    NSUInteger minimumTouches { 1 };
    NSUInteger maximumTouches { NSUInteger(-1) };
    CGPoint start {};    // on the screen; after the beginning, where the translation is zero
    CGPoint middle {};   // of the touches, on the screen
    std::deque<Sample> samples;
};

struct UIPanGestureRecognizer
    : objc::subclass<UIPanGestureRecognizer, "UIPanGestureRecognizer", UIGestureRecognizer> {
    using subclass::subclass;

    NSUInteger minimumNumberOfTouches() const;
    void setMinimumNumberOfTouches(NSUInteger count) const;
    NSUInteger maximumNumberOfTouches() const;
    void setMaximumNumberOfTouches(NSUInteger count) const;

    // Points, in the view's directions (nil: the window's); zero at the place where the slop was used up.
    CGPoint translationInView(UIView view) const;
    void setTranslation(CGPoint translation, UIView view) const;
    // Points per second over the last tenth of a second; zero when the finger has rested.
    CGPoint velocityInView(UIView view) const;

    void reset() const;
    void touchesBegan(NSSet touches, UIEvent event) const;
    void touchesMoved(NSSet touches, UIEvent event) const;
    void touchesEnded(NSSet touches, UIEvent event) const;
    void touchesCancelled(NSSet touches, UIEvent event) const;

protected:
    // Begins if the finger has moved far enough along the axes of the view given.
    void follow(PanAxes axes) const;
    void note() const;
    PanState& pan() const { return objc::state<PanState>(UIPanGestureRecognizer { object }); }
};

void defineUIPanGestureRecognizer();

}
