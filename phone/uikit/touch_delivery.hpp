// TouchDelivery: fingers on the glass. Whoever has a finger (the window's mouse, a test, automation) says
// where it goes down, moves and lifts; the touch reaches the view under it and the recognisers of that view
// and the views around it, as UIApplication's sendEvent: has it. Screen points; main thread.
#pragma once

#include "phone/uikit/ui_touch.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace phone {

class TouchDelivery {
public:
    // A finger that is down already is lifted first; one that isn't down can't move or lift: nothing.
    void touchDown(CGPoint point, int finger = 0);
    void touchMoved(CGPoint point, int finger = 0);
    void touchUp(CGPoint point, int finger = 0);   // moves there first
    void touchCancelled(int finger = 0);
    // The system takes all fingers over: a lock, a window torn down.
    void cancelAll();
    bool isDown(int finger = 0) const;

    // A mouse wheel over the point. Points of content, positive to see what lies right or below; a view
    // that scrolls along one axis only follows whichever is turned.
    // Answers whether something scrolled.
    bool wheel(CGPoint point, double dx, double dy);

    // The view that a finger there would touch; nil when no window takes it. Windows from the front to the
    // back; each decides by hitTest:withEvent:.
    UIView hitTest(CGPoint point) const;

    // Told of every finger that goes down and every one that lifts: the idle timer.
    void setObserver(std::function<void()> observer) { m_observer = std::move(observer); }

    // Has the view been told of the touch?
    bool hasBegunInView(UITouch touch) const;
    // For recognisers. The view loses the touch (touchesCancelled:), or never gets it.
    void cancelInView(UITouch touch);
    // A recogniser changed its mind outside of an event (a timer): lets others go on, hands over what waited.
    void settle();

private:
    // What the touched view knows of the finger.
    enum class Content { held, begun, endHeld, done };
    struct Finger {
        int number;
        objc::ref<UITouch> touch;
        Content content { Content::held };
        bool isLifted { false };
    };

    Finger* find(int number);
    std::shared_ptr<Finger> findShared(int number);
    UIEvent event(TouchPhase phase, UITouch touch);
    void lift(Finger& finger, TouchPhase phase);
    void handOver(Finger& finger);
    bool isHeldBack(UITouch touch, bool atEnd) const;

    std::vector<std::shared_ptr<Finger>> m_fingers;
    objc::ref<UIEvent> m_event;
    std::function<void()> m_observer;
    CGPoint m_lastUp {};
    double m_lastUpTime { -1 };
    NSUInteger m_lastTapCount { 0 };
};

TouchDelivery& touchDelivery();

}
