#include "phone/uikit/ui_touch.hpp"

#include "phone/uikit/ui_gesture_recognizer.hpp"

#include <algorithm>

namespace phone {

namespace {

CGPoint inView(UITouch touch, CGPoint screen, UIView view)
{
    UIWindow const window = touch.window();
    CGPoint const inWindow = fromScreen(screen, window);
    return view ? view.convertPointFromView(inWindow, window) : inWindow;
}

template <class Predicate>
NSSet matching(UIEvent event, Predicate matches)
{
    auto found = NSMutableArray::array();
    for (auto const& touch : event.eventState().touches) {
        if (matches(touch.get()))
            found.addObject(touch.get());
    }
    return NSSet::setWithArray(found);
}

}

TouchState& UITouch::touchState() const { return objc::state<TouchState>(*this); }

TouchPhase UITouch::phase() const { return touchState().phase; }
double UITouch::timestamp() const { return touchState().timestamp; }
NSUInteger UITouch::tapCount() const { return touchState().tapCount; }
UIWindow UITouch::window() const { return touchState().window; }
UIView UITouch::view() const { return touchState().view; }

NSArray UITouch::gestureRecognizers() const
{
    auto all = NSMutableArray::array();
    for (auto const& recognizer : touchState().recognizers)
        all.addObject(recognizer.get());
    return all;
}

CGPoint UITouch::locationInView(UIView view) const { return inView(*this, touchState().location, view); }

CGPoint UITouch::previousLocationInView(UIView view) const
{
    return inView(*this, touchState().previousLocation, view);
}

void defineUITouch()
{
    objc::define<UITouch>()
        .state<TouchState>()
        .method<"phase", &UITouch::phase>()
        .method<"timestamp", &UITouch::timestamp>()
        .method<"tapCount", &UITouch::tapCount>()
        .method<"type", &UITouch::type>()
        .method<"window", &UITouch::window>()
        .method<"view", &UITouch::view>()
        .method<"gestureRecognizers", &UITouch::gestureRecognizers>()
        .method<"locationInView:", &UITouch::locationInView>()
        .method<"previousLocationInView:", &UITouch::previousLocationInView>()
        .install();
}

double UIEvent::timestamp() const { return eventState().timestamp; }

NSSet UIEvent::allTouches() const
{
    return matching(*this, [](UITouch) { return true; });
}

NSSet UIEvent::touchesForView(UIView view) const
{
    return matching(*this, [view](UITouch touch) { return touch.view() == view; });
}

NSSet UIEvent::touchesForWindow(UIWindow window) const
{
    return matching(*this, [window](UITouch touch) { return touch.window() == window; });
}

NSSet UIEvent::touchesForGestureRecognizer(UIGestureRecognizer recognizer) const
{
    return matching(*this, [recognizer](UITouch touch) {
        return std::ranges::any_of(touch.touchState().recognizers,
            [recognizer](auto const& one) { return one.get() == recognizer; });
    });
}

void defineUIEvent()
{
    objc::define<UIEvent>()
        .state<EventState>()
        .method<"type", &UIEvent::type>()
        .method<"timestamp", &UIEvent::timestamp>()
        .method<"allTouches", &UIEvent::allTouches>()
        .method<"touchesForView:", &UIEvent::touchesForView>()
        .method<"touchesForWindow:", &UIEvent::touchesForWindow>()
        .method<"touchesForGestureRecognizer:", &UIEvent::touchesForGestureRecognizer>()
        .install();
}

CGPoint fromScreen(CGPoint point, UIWindow window)
{
    return window ? apply(inverted(window.transformToSuperview()), point) : point;
}

std::vector<UITouch> touchesOf(NSSet touches)
{
    std::vector<UITouch> all;
    NSArray const members = touches.allObjects();
    for (NSUInteger i = 0; i < members.count(); ++i)
        all.push_back(UITouch { members.objectAtIndex(i).object });
    return all;
}

}
