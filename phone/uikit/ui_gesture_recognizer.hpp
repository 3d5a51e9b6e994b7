// UIGestureRecognizer: watches the touches of its view and of the views below, and sends its action when they
// make its gesture. Which of several recognisers gets a touch is decided here; touches come from
// TouchDelivery (touch_delivery.hpp). Main thread.
#pragma once

#include "phone/foundation/weak.hpp"
#include "phone/uikit/ui_touch.hpp"

#include <optional>
#include <string>
#include <vector>

namespace phone {

// UIGestureRecognizerState. A discrete gesture goes from possible to ended, which UIKit also calls
// recognized.
enum class GestureState : NSInteger { possible, began, changed, ended, cancelled, failed };

struct GestureTarget {
    Weak<NSObject> target;
    SEL action;
};

struct RecognizerState {
    Weak<UIView> view;
    GestureState state { GestureState::possible };
    bool isEnabled { true };
    bool cancelsTouchesInView { true };
    bool delaysTouchesBegan { false };
    bool delaysTouchesEnded { true };
    Weak<NSObject> delegate;
    std::string name;
    std::vector<GestureTarget> targets;
    std::vector<Weak<UIGestureRecognizer>> required;   // have to fail first
    std::vector<objc::ref<UITouch>> touches;           // those on the screen, in order of arrival
    bool isActive { false };                           // from its first touch until it is reset
    std::optional<GestureState> deferred;              // recognised, but for the required ones
};

struct UIGestureRecognizer : objc::subclass<UIGestureRecognizer, "UIGestureRecognizer", NSObject> {
    using subclass::subclass;

    UIGestureRecognizer init() const;
    UIGestureRecognizer initWithTarget(objc::handle target, SEL action) const;   // nil: none yet
    void addTarget(objc::handle target, SEL action) const;                       // not kept
    void removeTarget(objc::handle target, SEL action) const;   // nil: any target; no selector: any action

    UIView view() const;
    GestureState state() const;
    // For subclasses, as they find out. Starting, ending and the rest send the action; whether the gesture
    // may begin at all is decided here. Without a touch of its own, the state is only noted.
    // Deviation: UIKit sends the action on its next update also when no finger is down.
    void setState(GestureState state) const;

    BOOL isEnabled() const;
    void setEnabled(BOOL enabled) const;   // NO cancels what it is doing
    BOOL cancelsTouchesInView() const;
    void setCancelsTouchesInView(BOOL cancels) const;
    BOOL delaysTouchesBegan() const;
    void setDelaysTouchesBegan(BOOL delays) const;
    BOOL delaysTouchesEnded() const;
    void setDelaysTouchesEnded(BOOL delays) const;
    objc::handle delegate() const;
    void setDelegate(objc::handle delegate) const;   // not kept
    NSString name() const;
    void setName(NSString name) const;
    void requireGestureRecognizerToFail(UIGestureRecognizer other) const;

    CGPoint locationInView(UIView view) const;   // middle of the touches; nil: in the window
    CGPoint locationOfTouch(NSUInteger index, UIView view) const;   // raises past the end
    NSUInteger numberOfTouches() const;

    // For subclasses to override.
    void reset() const;
    void ignoreTouch(UITouch touch, UIEvent event) const;
    BOOL canPreventGestureRecognizer(UIGestureRecognizer other) const;
    BOOL canBePreventedByGestureRecognizer(UIGestureRecognizer other) const;
    void touchesBegan(NSSet touches, UIEvent event) const;
    void touchesMoved(NSSet touches, UIEvent event) const;
    void touchesEnded(NSSet touches, UIEvent event) const;       // the base: fails
    void touchesCancelled(NSSet touches, UIEvent event) const;   // the base: cancels or fails

    NSString description() const;

    // For UIKit's own files.
    void setView(UIView view) const;   // phone_setView:, sent by UIView
    RecognizerState& recognizerState() const { return objc::state<RecognizerState>(*this); }
    bool isPossible() const { return state() == GestureState::possible; }
    bool isRecognized() const;   // began, changed or ended, for the touches that it has
    void takeTouch(UITouch touch) const;
    std::vector<GestureTarget> targets() const;   // those that still live

private:
    bool mayBegin() const;
    bool isHeldUp() const;
    void recognize(GestureState next) const;
    void sendActions() const;
    friend void settleRecognizers();
};

// After each event and each timer of a recogniser: lets those go on that waited for others to fail, and
// resets those whose fingers have left. TouchDelivery calls it.
void settleRecognizers();

// Middle of the touches, on the screen.
CGPoint middleOf(std::vector<objc::ref<UITouch>> const& touches);

void defineUIGestureRecognizer();

}
