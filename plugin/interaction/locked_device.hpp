// The two questions to SpringBoard that every action asks on a device that may be locked.
#pragma once

// Whether a passcode still guards the device. False where SpringBoard does not say.
bool deviceIsPasscodeLocked();

// Asks SpringBoard to bring up the passcode entry, or to put away a lock screen that has no passcode. Answers at once.
void requestUnlock();
