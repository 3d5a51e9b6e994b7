// The system's composers, declared fit to show over the lock screen.
#pragma once

#include "platform/message_ui.hpp"

struct MFMessageComposeViewControllerCVL
    : objc::subclass<MFMessageComposeViewControllerCVL, "MFMessageComposeViewControllerCVL",
          MFMessageComposeViewController> {
    using subclass::subclass;
    BOOL canShowWhileLocked() const { return true; }
};
struct MFMailComposeViewControllerCVL : objc::subclass<MFMailComposeViewControllerCVL,
                                            "MFMailComposeViewControllerCVL", MFMailComposeViewController> {
    using subclass::subclass;
    BOOL canShowWhileLocked() const { return true; }
};
void defineComposers();   // start-up calls it once
