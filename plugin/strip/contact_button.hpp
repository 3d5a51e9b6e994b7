// CVLButton: one contact's photo in the strip. It carries what the actions need to know of the contact. A nil button knows nothing.
#pragma once

#include "platform/uikit.hpp"

struct CVLButton : objc::subclass<CVLButton, "CVLButton", UIButton> {
    using subclass::subclass;

    NSString getPhoneNumber() const;   // empty: none
    void setPhoneNumber(NSString number) const;
    NSString getContactName() const;   // the text of the name label
    void setContactName(NSString name) const;
    NSString getEmailAddr() const;   // empty: none
    void setEmailAddr(NSString address) const;
    NSDate getBirthday() const;   // nil: none
    void setBirthday(NSDate date) const;
    void setCake(UIImageView badge) const;   // the cake badge that goes with the button
    void setCakeHidden(BOOL hidden) const;

    // Fades to almost nothing in 0.2 s, then back in 0.7 s.
    void fadeOutAnimationButton() const;
};
void defineCVLButton();   // start-up calls it once
