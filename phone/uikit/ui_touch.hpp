// UITouch and UIEvent: one finger, and what happened to the fingers at one moment. Made by TouchDelivery
// (touch_delivery.hpp), which alone changes them; views and recognisers read. Main thread.
#pragma once

#include "objc/define.hpp"
#include "phone/uikit/ui_view.hpp"
#include "phone/uikit/ui_window.hpp"

#include <vector>

namespace phone {

struct UIGestureRecognizer;

enum class TouchPhase : NSInteger { began, moved, stationary, ended, cancelled };

struct TouchState {
    TouchPhase phase { TouchPhase::began };
    double timestamp { 0 };   // seconds on the phone's clock
    NSUInteger tapCount { 1 };
    CGPoint location {};   // on the screen, in points
    CGPoint previousLocation {};
    objc::ref<UIWindow> window;
    objc::ref<UIView> view;   // kept for as long as the finger is down, also when it leaves the tree
    std::vector<objc::ref<UIGestureRecognizer>> recognizers;
};

struct UITouch : objc::subclass<UITouch, "UITouch", NSObject> {
    using subclass::subclass;

    TouchPhase phase() const;
    double timestamp() const;
    NSUInteger tapCount() const;
    NSInteger type() const { return 0; }   // a finger (UITouchTypeDirect)
    UIWindow window() const;
    UIView view() const;
    NSArray gestureRecognizers() const;

    // In the view's space; nil: in the window's.
    CGPoint locationInView(UIView) const;
    CGPoint previousLocationInView(UIView) const;

    TouchState& touchState() const;
};
void defineUITouch();

struct EventState {
    double timestamp { 0 };
    std::vector<objc::ref<UITouch>> touches;
};

struct UIEvent : objc::subclass<UIEvent, "UIEvent", NSObject> {
    using subclass::subclass;

    NSInteger type() const { return 0; }   // touches (UIEventTypeTouches)
    double timestamp() const;
    NSSet allTouches() const;
    NSSet touchesForView(UIView) const;
    NSSet touchesForWindow(UIWindow) const;
    NSSet touchesForGestureRecognizer(UIGestureRecognizer) const;

    EventState& eventState() const { return objc::state<EventState>(*this); }
};
void defineUIEvent();

// A point of the screen in the window's own space: a window may be moved, turned or mirrored.
CGPoint fromScreen(CGPoint point, UIWindow window);

// Every touch of a set, as touchesBegan:withEvent: and its kin bring it.
std::vector<UITouch> touchesOf(NSSet);

}
