// What the host keeps for the life of the process. Main thread only.
#pragma once

#include "plugin/host/containing_window.hpp"
#include "plugin/host/view_preferences.hpp"
#include "plugin/strip/cvl_view.hpp"

struct HostState {
    objc::class_handle versionClass;   // the lock screen's adjunct-list controller; chosen at start-up
    objc::class_handle versionClassPasscode;   // the lock screen's passcode controller; chosen at start-up
    objc::ref<CVLView> cvloView;      // the lock screen's strip; made once, by the first enabled viewDidLoad
    objc::ref<CVLView> overlayView;   // the strip above any application; made once, by the overlay's gesture
    objc::ref<BAContainingWindow> windowForLSView;   // the overlay strip's window
    NSInteger oldOrientation = 0;                    // the front-most application's, when last looked at
    OwnedPreferences initPrefs { OwnedPreferences::Owns::colours };   // filled by initFirstPreferences alone
};

HostState& hostState();
