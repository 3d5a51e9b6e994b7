#include "phone/uikit/ui_control.hpp"

#include "objc/define.hpp"
#include "phone/foundation/weak.hpp"
#include "phone/uikit/ui_application.hpp"

namespace phone {

namespace {

struct Row {
    Weak<NSObject> target;
    bool hasTarget;   // of a target that has gone nothing is sent; one that never was is the responder chain
    SEL action;
    NSUInteger events;
};

struct ControlTracking {
    std::vector<Row> rows;
    bool isEnabled { true };
    bool isSelected { false };
    bool isHighlighted { false };
    bool isTracking { false };
    bool isTouchInside { false };
    NSInteger horizontal { 0 };
    NSInteger vertical { 0 };
    objc::ref<objc::handle> touch;   // the one that is tracked
};

ControlTracking& stateOf(UIControl control)
{
    return objc::state<ControlTracking>(UIControl { control.object });
}

bool isSame(SEL a, SEL b)
{
    if (!a || !b)
        return a == b;
    return std::string_view(sel_getName(a)) == sel_getName(b);
}

bool isInside(UIControl control, objc::handle touch, objc::handle event, double slop)
{
    CGPoint const point = touch.send<"locationInView:", CGPoint>(control);
    if (slop == 0)
        return control.send<"pointInside:withEvent:", BOOL>(point, event);
    return contains(inset(control.bounds(), { -slop, -slop, -slop, -slop }), point);
}

objc::handle anyTouch(objc::handle touches) { return touches.send<"anyObject", objc::handle>(); }

void endTouch(UIControl control)
{
    ControlTracking& state = stateOf(control);
    state.isTracking = false;
    state.isTouchInside = false;
    state.touch = nullptr;
    control.send<"setHighlighted:">(BOOL { false });
}

}

UIControl UIControl::initWithFrame(CGRect frame) const
{
    return objc::send_super<UIControl, "initWithFrame:", UIControl>(UIControl { object }, frame);
}

void UIControl::addTarget(objc::handle target, SEL action, NSUInteger events) const
{
    if (!object || !action || !events)
        return;
    auto& rows = stateOf(*this).rows;
    for (Row& row : rows) {
        if (row.target.get() == target && row.hasTarget == bool(target) && isSame(row.action, action)) {
            row.events |= events;
            return;
        }
    }
    rows.push_back({ NSObject { target.object }, bool(target), action, events });
}

void UIControl::removeTarget(objc::handle target, SEL action, NSUInteger events) const
{
    if (!object)
        return;
    auto& rows = stateOf(*this).rows;
    for (Row& row : rows) {
        if ((!target || row.target.get() == target) && (!action || isSame(row.action, action)))
            row.events &= ~events;
    }
    std::erase_if(rows, [](Row const& row) { return !row.events; });
}

std::vector<ControlAction> UIControl::actions() const
{
    std::vector<ControlAction> all;
    if (!object)
        return all;
    for (Row const& row : stateOf(*this).rows) {
        if (!row.hasTarget || row.target.get())
            all.push_back({ row.target.get(), row.action, row.events });
    }
    return all;
}

objc::handle UIControl::allTargets() const
{
    auto const set = objc::cls<"NSMutableSet">().send<"set", objc::handle>();
    for (ControlAction const& each : actions()) {
        objc::handle const member =
            each.target ? each.target : objc::cls<"NSNull">().send<"null", objc::handle>();
        set.send<"addObject:">(member);
    }
    return set;
}

NSUInteger UIControl::allControlEvents() const
{
    NSUInteger events = 0;
    for (ControlAction const& each : actions())
        events |= each.events;
    return events;
}

NSArray UIControl::actionsForTarget(objc::handle target, NSUInteger event) const
{
    auto const names = NSMutableArray::array();
    for (ControlAction const& each : actions()) {
        if ((!target || each.target == target) && (each.events & event))
            names.addObject(NSString::stringWithUTF8String(sel_getName(each.action)));
    }
    return names.count() ? NSArray { names.object } : NSArray {};
}

void UIControl::sendActionsForControlEvents(NSUInteger events) const { sendActions(events, {}); }

void UIControl::sendActions(NSUInteger events, objc::handle event) const
{
    auto const kept = objc::retain(*this);
    for (ControlAction const& each : actions()) {
        if (!(each.events & events))
            continue;
        auto const target = objc::retain(each.target);
        send<"sendAction:to:forEvent:">(each.action, each.target, event);
    }
}

void UIControl::sendAction(SEL action, objc::handle target, objc::handle event) const
{
    if (auto const application = UIApplication::sharedApplication())
        application.send<"sendAction:to:from:forEvent:", BOOL>(action, target, *this, event);
    else
        UIApplication {}.sendAction(action, target, *this, event);
}

BOOL UIControl::isEnabled() const { return object && stateOf(*this).isEnabled; }
void UIControl::setEnabled(BOOL enabled) const
{
    if (!object || stateOf(*this).isEnabled == enabled)
        return;
    stateOf(*this).isEnabled = enabled;
    setNeedsDisplay();
    setNeedsLayout();
}
BOOL UIControl::isSelected() const { return object && stateOf(*this).isSelected; }
void UIControl::setSelected(BOOL selected) const
{
    if (!object || stateOf(*this).isSelected == selected)
        return;
    stateOf(*this).isSelected = selected;
    setNeedsDisplay();
    setNeedsLayout();
}
BOOL UIControl::isHighlighted() const { return object && stateOf(*this).isHighlighted; }
void UIControl::setHighlighted(BOOL highlighted) const
{
    if (!object || stateOf(*this).isHighlighted == highlighted)
        return;
    stateOf(*this).isHighlighted = highlighted;
    setNeedsDisplay();
    setNeedsLayout();
}
NSUInteger UIControl::state() const
{
    if (!object)
        return 0;
    ControlTracking const& state = stateOf(*this);
    return (state.isHighlighted ? ControlState::highlighted : 0)
        | (state.isEnabled ? 0 : ControlState::disabled) | (state.isSelected ? ControlState::selected : 0);
}
BOOL UIControl::isTracking() const { return object && stateOf(*this).isTracking; }
BOOL UIControl::isTouchInside() const { return object && stateOf(*this).isTouchInside; }
NSInteger UIControl::contentHorizontalAlignment() const { return stateOf(*this).horizontal; }
void UIControl::setContentHorizontalAlignment(NSInteger alignment) const
{
    stateOf(*this).horizontal = alignment;
    setNeedsLayout();
}
NSInteger UIControl::contentVerticalAlignment() const { return stateOf(*this).vertical; }
void UIControl::setContentVerticalAlignment(NSInteger alignment) const
{
    stateOf(*this).vertical = alignment;
    setNeedsLayout();
}

BOOL UIControl::beginTracking(objc::handle, objc::handle) const { return true; }
BOOL UIControl::continueTracking(objc::handle, objc::handle) const { return true; }
void UIControl::endTracking(objc::handle, objc::handle) const { }
void UIControl::cancelTracking(objc::handle) const { }

void UIControl::touchesBegan(objc::handle touches, objc::handle event) const
{
    // A control that is off takes the touch and does nothing with it.
    if (!isEnabled() || stateOf(*this).touch)
        return;
    auto const kept = objc::retain(*this);
    objc::handle const touch = anyTouch(touches);
    ControlTracking& state = stateOf(*this);
    state.touch = objc::retain(touch);
    state.isTouchInside = true;
    state.isTracking = send<"beginTrackingWithTouch:withEvent:", BOOL>(touch, event);
    if (!state.isTracking) {
        endTouch(*this);
        return;
    }
    send<"setHighlighted:">(BOOL { true });
    NSUInteger events = ControlEvent::touchDown;
    if (touch.send<"tapCount", NSUInteger>() > 1)
        events |= ControlEvent::touchDownRepeat;
    sendActions(events, event);
}

void UIControl::touchesMoved(objc::handle touches, objc::handle event) const
{
    ControlTracking& state = stateOf(*this);
    objc::handle const touch = state.touch;
    if (!touch || !state.isTracking || !touches.send<"containsObject:", BOOL>(touch))
        return;
    auto const kept = objc::retain(*this);
    bool const wasInside = state.isTouchInside;
    state.isTouchInside = isInside(*this, touch, event, kControlSlop);
    send<"setHighlighted:">(BOOL { state.isTouchInside });
    if (!send<"continueTrackingWithTouch:withEvent:", BOOL>(touch, event)) {
        endTouch(*this);
        return;
    }
    NSUInteger events = state.isTouchInside ? ControlEvent::touchDragInside : ControlEvent::touchDragOutside;
    if (state.isTouchInside != wasInside)
        events |= state.isTouchInside ? ControlEvent::touchDragEnter : ControlEvent::touchDragExit;
    sendActions(events, event);
}

void UIControl::touchesEnded(objc::handle touches, objc::handle event) const
{
    ControlTracking& state = stateOf(*this);
    auto const touch = objc::retain(state.touch.get());
    if (!touch || !touches.send<"containsObject:", BOOL>(touch))
        return;
    auto const kept = objc::retain(*this);
    bool const wasTracking = state.isTracking;
    bool const inside = isInside(*this, touch, event, kControlSlop);
    endTouch(*this);
    if (!wasTracking)
        return;
    send<"endTrackingWithTouch:withEvent:">(touch.get(), event);
    sendActions(inside ? ControlEvent::touchUpInside : ControlEvent::touchUpOutside, event);
}

void UIControl::touchesCancelled(objc::handle, objc::handle event) const
{
    ControlTracking& state = stateOf(*this);
    if (!state.touch)
        return;
    auto const kept = objc::retain(*this);
    bool const wasTracking = state.isTracking;
    endTouch(*this);
    if (!wasTracking)
        return;
    send<"cancelTrackingWithEvent:">(event);
    sendActions(ControlEvent::touchCancel, event);
}

void defineUIControl()
{
    objc::define<UIControl>()
        .state<ControlTracking>()
        .method<"initWithFrame:", &UIControl::initWithFrame>()
        .method<"addTarget:action:forControlEvents:", &UIControl::addTarget>()
        .method<"removeTarget:action:forControlEvents:", &UIControl::removeTarget>()
        .method<"allTargets", &UIControl::allTargets>()
        .method<"allControlEvents", &UIControl::allControlEvents>()
        .method<"actionsForTarget:forControlEvent:", &UIControl::actionsForTarget>()
        .method<"sendActionsForControlEvents:", &UIControl::sendActionsForControlEvents>()
        .method<"sendAction:to:forEvent:", &UIControl::sendAction>()
        .method<"isEnabled", &UIControl::isEnabled>()
        .method<"setEnabled:", &UIControl::setEnabled>()
        .method<"isSelected", &UIControl::isSelected>()
        .method<"setSelected:", &UIControl::setSelected>()
        .method<"isHighlighted", &UIControl::isHighlighted>()
        .method<"setHighlighted:", &UIControl::setHighlighted>()
        .method<"state", &UIControl::state>()
        .method<"isTracking", &UIControl::isTracking>()
        .method<"isTouchInside", &UIControl::isTouchInside>()
        .method<"contentHorizontalAlignment", &UIControl::contentHorizontalAlignment>()
        .method<"setContentHorizontalAlignment:", &UIControl::setContentHorizontalAlignment>()
        .method<"contentVerticalAlignment", &UIControl::contentVerticalAlignment>()
        .method<"setContentVerticalAlignment:", &UIControl::setContentVerticalAlignment>()
        .method<"beginTrackingWithTouch:withEvent:", &UIControl::beginTracking>()
        .method<"continueTrackingWithTouch:withEvent:", &UIControl::continueTracking>()
        .method<"endTrackingWithTouch:withEvent:", &UIControl::endTracking>()
        .method<"cancelTrackingWithEvent:", &UIControl::cancelTracking>()
        .method<"touchesBegan:withEvent:", &UIControl::touchesBegan>()
        .method<"touchesMoved:withEvent:", &UIControl::touchesMoved>()
        .method<"touchesEnded:withEvent:", &UIControl::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &UIControl::touchesCancelled>()
        .install();
}

}
