// MFMessageComposeViewController: a text message to somebody. Main thread.
#pragma once

#include "phone/uikit/ui_view_controller.hpp"

namespace phone {

struct MFMessageComposeViewController
    : objc::subclass<MFMessageComposeViewController, "MFMessageComposeViewController", UIViewController> {
    using subclass::subclass;
    static BOOL canSendText(objc::class_handle receiver);

    objc::handle messageComposeDelegate() const;
    void setMessageComposeDelegate(objc::handle delegate) const;   // not kept
    NSArray recipients() const;
    void setRecipients(NSArray texts) const;
    BOOL canBecomeFirstResponder() const { return true; }
    BOOL becomeFirstResponder() const;

    void loadView() const;
    BOOL mayBePresented() const;
    void animatePresentation(BOOL presenting, std::function<void()>* done) const;
    void sendPressed(objc::handle sender) const;     // phone_sendPressed:
    void cancelPressed(objc::handle sender) const;   // phone_cancelPressed:
};

void defineMFMessageComposeViewController();

}
