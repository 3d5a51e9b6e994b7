// UIControl: a view that turns touches into events and sends actions to targets. Main thread.
#pragma once

#include "phone/uikit/ui_view.hpp"

namespace phone {

// UIControlEvents
namespace ControlEvent {
inline constexpr NSUInteger touchDown = 1, touchDownRepeat = 2, touchDragInside = 4, touchDragOutside = 8,
                            touchDragEnter = 16, touchDragExit = 32, touchUpInside = 64, touchUpOutside = 128,
                            touchCancel = 256, valueChanged = 1 << 12, allTouchEvents = 0xfff,
                            allEvents = 0xffffffff;
}
// UIControlState
namespace ControlState {
inline constexpr NSUInteger normal = 0, highlighted = 1, disabled = 2, selected = 4;
}

// One row of a control: target (weak; nil: the responder chain), action, mask of events.
struct ControlAction {
    objc::handle target;
    SEL action;
    NSUInteger events;
};

struct UIControl : objc::subclass<UIControl, "UIControl", UIView> {
    using subclass::subclass;
    UIControl initWithFrame(CGRect frame) const;

    void addTarget(objc::handle target, SEL action, NSUInteger events) const;
    void removeTarget(
        objc::handle target, SEL action, NSUInteger events) const;   // nil: any target, null: any action
    objc::handle allTargets() const;                                 // NSSet
    NSUInteger allControlEvents() const;
    NSArray actionsForTarget(objc::handle target, NSUInteger event) const;   // texts; nil for none
    std::vector<ControlAction> actions() const;
    void sendActionsForControlEvents(NSUInteger events) const;
    // Sends with the UIEvent, in the order in which the targets were added.
    void sendActions(NSUInteger events, objc::handle event) const;
    void sendAction(SEL action, objc::handle target, objc::handle event) const;

    BOOL isEnabled() const;
    void setEnabled(BOOL enabled) const;
    BOOL isSelected() const;
    void setSelected(BOOL selected) const;
    BOOL isHighlighted() const;
    void setHighlighted(BOOL highlighted) const;
    NSUInteger state() const;
    BOOL isTracking() const;
    BOOL isTouchInside() const;
    NSInteger contentHorizontalAlignment() const;
    void setContentHorizontalAlignment(NSInteger alignment) const;
    NSInteger contentVerticalAlignment() const;
    void setContentVerticalAlignment(NSInteger alignment) const;

    // From touches; subclasses override them.
    BOOL beginTracking(objc::handle touch, objc::handle event) const;
    BOOL continueTracking(objc::handle touch, objc::handle event) const;
    void endTracking(objc::handle touch, objc::handle event) const;
    void cancelTracking(objc::handle event) const;
    void touchesBegan(objc::handle touches, objc::handle event) const;
    void touchesMoved(objc::handle touches, objc::handle event) const;
    void touchesEnded(objc::handle touches, objc::handle event) const;
    void touchesCancelled(objc::handle touches, objc::handle event) const;
};

// A finger that has gone down stays inside a control up to this far beyond its edge (points).
inline constexpr double kControlSlop = 70;

void defineUIControl();

}
