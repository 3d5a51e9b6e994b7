// UIAlertController and UIAlertAction: alerts and action sheets. What they look like is in
// alert_presentation.hpp. Main thread.
#pragma once

#include "objc/block.hpp"
#include "objc/define.hpp"
#include "phone/uikit/ui_image.hpp"
#include "phone/uikit/ui_view_controller.hpp"

#include <string>
#include <vector>

namespace phone {

struct UIAlertAction;
struct UIAlertController;
struct AlertView;

// UIAlertControllerStyle and UIAlertActionStyle.
enum class AlertStyle : NSInteger { actionSheet, alert };
enum class AlertActionStyle : NSInteger { standard, cancel, destructive };

using AlertHandler = objc::block_ref<void(UIAlertAction)>;

struct AlertActionState {
    objc::ref<NSString> title;
    AlertActionStyle style { AlertActionStyle::standard };
    bool isEnabled { true };
    objc::block_copy<void(UIAlertAction)> handler;
};

struct UIAlertAction : objc::subclass<UIAlertAction, "UIAlertAction", NSObject> {
    using subclass::subclass;

    // The title is copied; the handler, which may be none, is kept until the alert has been answered. Lent.
    static UIAlertAction actionWithTitle(
        objc::class_handle receiver, NSString title, AlertActionStyle style, AlertHandler handler);
    NSString title() const;
    AlertActionStyle style() const;
    BOOL isEnabled() const;
    void setEnabled(BOOL enabled) const;
    UIImage image() const;   // the private key "image": shown before the title

    AlertActionState& actionState() const { return objc::state<AlertActionState>(*this); }
};

struct AlertState {
    objc::ref<NSString> message;
    AlertStyle style { AlertStyle::actionSheet };
    std::vector<objc::ref<UIAlertAction>> actions;
    objc::ref<UIAlertAction> preferred;
    bool isAnswered { false };
};

struct UIAlertController : objc::subclass<UIAlertController, "UIAlertController", UIViewController> {
    using subclass::subclass;

    // Texts are copied, and may be nil. Lent.
    static UIAlertController alertController(
        objc::class_handle receiver, NSString title, NSString message, AlertStyle style);
    // A second action of the cancel style raises, as on the platform.
    void addAction(UIAlertAction action) const;
    NSArray actions() const;   // in the order in which they were added
    AlertStyle preferredStyle() const;
    NSString message() const;
    void setMessage(NSString message) const;
    UIAlertAction preferredAction() const;
    void setPreferredAction(UIAlertAction action) const;

    void loadView() const;
    void animatePresentation(BOOL presenting, std::function<void()>* done) const;
    void describePresentation(nlohmann::ordered_json* fields) const;

    // What the person who touches a button does: the alert goes away, then the handler is called. Only once,
    // and not for a disabled action.
    void choose(UIAlertAction action) const;
    // The cancel style's; nil for none.
    UIAlertAction cancelAction() const;
    // As they stand on the screen: from the top down, or from the left to the right.
    std::vector<UIAlertAction> actionsOnScreen() const;
    AlertView alertView() const;   // the controller's view

    AlertState& alertState() const { return objc::state<AlertState>(*this); }
};

void defineUIAlertController();

}
