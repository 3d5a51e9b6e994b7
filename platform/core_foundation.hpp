// CoreFoundation: the version of the system, and its notification centres.
#pragma once

#include "platform/foundation.hpp"

struct CFNotificationCenter;
using CFNotificationCenterRef = CFNotificationCenter*;

// Called on the main loop. Object and user info as posted; the Darwin centre gives neither.
using CFNotificationCallback = void (*)(
    CFNotificationCenterRef center, void* observer, NSString name, void const* object, NSDictionary userInfo);

inline constexpr NSInteger CFNotificationSuspensionBehaviorCoalesce = 2;
inline constexpr NSInteger CFNotificationSuspensionBehaviorDeliverImmediately = 4;

extern "C" {
// 1575.17 on iOS 12.4, 1665.15 on 13.0: the number by which SpringBoard's classes changed their names.
extern double kCFCoreFoundationVersionNumber;

CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter();
CFNotificationCenterRef CFNotificationCenterGetLocalCenter();
void CFNotificationCenterAddObserver(CFNotificationCenterRef center, void const* observer,
    CFNotificationCallback callback, NSString name, void const* object, NSInteger suspensionBehavior);
}
