// Locking and unlocking: what happens in which order, whoever asks for it. Main thread.
//
// A full unlock: finish of the unlock, will-dismiss, disappearance of the passcode screen, dismissed; within
// one second. A finish that a plug-in swallows ends with the disappearance of the passcode screen.
#pragma once

#include "phone/kernel/result.hpp"

#include <string>

namespace phone {

// The side button. From the home screen or an application the lock screen comes; a lock screen whose passcode
// was given asks for it again; a passcode screen goes away. Otherwise nothing.
void lockPhone();

// The same when nobody has touched the phone for long: the screen stays dark.
void lockUntouched();

// What somebody's wish to leave the lock screen leads to. Without effect while one is being followed.
void requestUnlock();

Result<bool> enterPasscode(std::string const& code);
Status cancelPasscode();

// Is there a passcode that has to be given before protected content shows?
bool isPasscodeLocked();

// SpringBoard's own part of the manager's _finishUIUnlockFromSource:withOptions:. False: there was nothing
// to unlock.
bool finishUnlock();

}
