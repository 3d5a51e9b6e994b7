// MessageUI's composers.
#pragma once

#include "platform/uikit.hpp"

struct MFMessageComposeViewController
    : objc::subclass<MFMessageComposeViewController, "MFMessageComposeViewController", UIViewController> {
    using subclass::subclass;
    static BOOL canSendText() { return cls().ask<"canSendText", BOOL>(); }
    void setMessageComposeDelegate(objc::handle delegate) const
    {
        ask<"setMessageComposeDelegate:">(delegate);
    }   // not kept
    void setRecipients(NSArray numbers) const { ask<"setRecipients:">(numbers); }
};

struct MFMailComposeViewController
    : objc::subclass<MFMailComposeViewController, "MFMailComposeViewController", UIViewController> {
    using subclass::subclass;
    void setMailComposeDelegate(objc::handle delegate) const
    {
        ask<"setMailComposeDelegate:">(delegate);
    }   // not kept
    void setToRecipients(NSArray addresses) const { ask<"setToRecipients:">(addresses); }
};
