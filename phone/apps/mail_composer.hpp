// MFMailComposeViewController: a mail to somebody. Main thread.
#pragma once

#include "phone/uikit/ui_view_controller.hpp"

namespace phone {

struct MFMailComposeViewController
    : objc::subclass<MFMailComposeViewController, "MFMailComposeViewController", UIViewController> {
    using subclass::subclass;
    static BOOL canSendMail(objc::class_handle receiver);

    objc::handle mailComposeDelegate() const;
    void setMailComposeDelegate(objc::handle delegate) const;   // not kept
    NSArray toRecipients() const;
    void setToRecipients(NSArray texts) const;
    BOOL canBecomeFirstResponder() const { return true; }
    BOOL becomeFirstResponder() const;

    void loadView() const;
    BOOL mayBePresented() const;
    void animatePresentation(BOOL presenting, std::function<void()>* done) const;
    void sendPressed(objc::handle sender) const;     // phone_sendPressed:
    void cancelPressed(objc::handle sender) const;   // phone_cancelPressed:
};

void defineMFMailComposeViewController();

}
