// The contact on which the next action works. Set by a tap or a menu entry right before the action, also when the action is then
// parked; read and emptied by the actions. Nil until the first tap. Main thread only.
#pragma once

#include "platform/foundation.hpp"

struct CVLButton;

struct CurrentContact {
    objc::ref<NSString> currentPhoneNumber;   // as stored, spaces and hyphens included
    objc::ref<NSString> currentContactName;
    objc::ref<NSString> currentEmailAddr;
};

CurrentContact& currentContact();

// Which of the strings an action takes from the pressed button.
namespace captures {
inline constexpr unsigned number = 1;
inline constexpr unsigned name = 2;
inline constexpr unsigned email = 4;
}

// Replaces the named strings by the button's; a nil button gives nil ones.
void capture(CVLButton button, unsigned which);
