// SpringBoard's private classes. Any of them, and any of their selectors, may be missing on a system version: all are asked
// only for what they answer to.
#pragma once

#include "platform/uikit.hpp"

// CSNotificationAdjunctListViewController, SBDashBoardNotificationAdjunctListViewController before iOS 13: the list under the
// lock screen's notifications.
using AdjunctListViewController = UIViewController;

// CSPasscodeViewController, SBDashBoardPasscodeViewController before iOS 13.
using PasscodeViewController = UIViewController;

// The front-most application's interface orientation, 0 when the application does not say.
inline NSInteger frontMostAppOrientation()
{
    return UIApplication::sharedApplication().ask<"_frontMostAppOrientation", NSInteger>();
}

struct SBLockScreenManager : objc::subclass<SBLockScreenManager, "SBLockScreenManager", NSObject> {
    using subclass::subclass;
    static SBLockScreenManager sharedInstance() { return cls().ask<"sharedInstance", SBLockScreenManager>(); }
    // Brings up the passcode screen, or takes the lock screen away where no passcode is needed. Answers at once.
    void lockScreenViewControllerRequestsUnlock() const { ask<"lockScreenViewControllerRequestsUnlock">(); }
};

struct SBUserAgent : objc::subclass<SBUserAgent, "SBUserAgent", NSObject> {
    using subclass::subclass;
    BOOL deviceIsPasscodeLocked() const { return ask<"deviceIsPasscodeLocked", BOOL>(); }
};

struct SpringBoard : objc::subclass<SpringBoard, "SpringBoard", UIApplication> {
    using subclass::subclass;
    static SpringBoard sharedApplication() { return cls().ask<"sharedApplication", SpringBoard>(); }
    SBUserAgent pluginUserAgent() const { return ask<"pluginUserAgent", SBUserAgent>(); }
};

// Keeps the screen from dimming while any reason is held.
struct IdleTimerProvider : NSObject {
    using NSObject::NSObject;
    void addDisabledIdleTimerAssertionReason(NSString reason) const
    {
        ask<"addDisabledIdleTimerAssertionReason:">(reason);
    }
    void removeDisabledIdleTimerAssertionReason(NSString reason) const
    {
        ask<"removeDisabledIdleTimerAssertionReason:">(reason);
    }
};

struct SBCoverSheetPresentationManager
    : objc::subclass<SBCoverSheetPresentationManager, "SBCoverSheetPresentationManager", NSObject> {
    using subclass::subclass;
    static SBCoverSheetPresentationManager sharedInstance()
    {
        return cls().ask<"sharedInstance", SBCoverSheetPresentationManager>();
    }
    NSObject dashBoardViewController() const { return ask<"dashBoardViewController", NSObject>(); }
    NSObject coverSheetViewController() const { return ask<"coverSheetViewController", NSObject>(); }
};
