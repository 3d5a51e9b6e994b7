// What every strip of the process shares. The strip that was created last has written it, and the other one sees its values:
// the lock-screen strip and the overlay strip are built by one initialiser.
#pragma once

#include "plugin/host/view_preferences.hpp"

struct StripState {
    OwnedPreferences mainPrefsStruct {
        OwnedPreferences::Owns::everything
    };                                           // what the last strip was built with
    CGFloat referenceWidth = 0;                  // points: the screen's width as seen in portrait
    objc::ref<UIVisualEffectView> blurView;      // the last blurred background made; nil before the first
    objc::ref<UIView> handleBar;                 // the overlay's grey handle
    objc::ref<NSMutableArray> birthdayButtons;   // the buttons that carry a cake badge
    objc::ref<UIImage> cakeImage;                // the badge, 29 by 29 points
    BOOL birthdayTimerStarted = false;           // one hourly timer a process
};

StripState& stripState();
