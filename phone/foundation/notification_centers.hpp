// CoreFoundation's notification centres, and the tracing of what plug-ins observe and post. Main thread.
#pragma once

#include "platform/foundation.hpp"

#include <string>

struct CFNotificationCenter;
using CFNotificationCenterRef = CFNotificationCenter*;
using CFNotificationCallback = void (*)(
    CFNotificationCenterRef center, void* observer, NSString name, void const* object, NSDictionary userInfo);

extern "C" {
// Set by boot before the first plug-in is loaded.
extern double kCFCoreFoundationVersionNumber;

CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter();
CFNotificationCenterRef CFNotificationCenterGetLocalCenter();
// Deviation: one process is all there is, so the distributed centre is the local one.
CFNotificationCenterRef CFNotificationCenterGetDistributedCenter();
// name null: every name (not on the Darwin centre, where nothing is then observed). object null: any object.
// behaviour (CFNotificationSuspensionBehavior) 1 drop, 2 coalesce, 3 hold, 4 deliver immediately.
void CFNotificationCenterAddObserver(CFNotificationCenterRef center, void const* observer,
    CFNotificationCallback callback, NSString name, void const* object, NSInteger suspensionBehavior);
void CFNotificationCenterRemoveObserver(
    CFNotificationCenterRef center, void const* observer, NSString name, void const* object);
void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, void const* observer);
void CFNotificationCenterPostNotification(CFNotificationCenterRef center, NSString name, void const* object,
    NSDictionary userInfo, objc::raw_bool deliverImmediately);
void CFNotificationCenterPostNotificationWithOptions(CFNotificationCenterRef center, NSString name,
    void const* object, NSDictionary userInfo, NSUInteger options);
}

namespace phone {

// Delivered on the next turn of the main loop, once to each observer however often it was posted before
// then. Without object and user info.
void postDarwinNotification(std::string const& name);
// Delivered now.
void postLocalNotification(std::string const& name);

// Forgets every observer, for a boot in the same process.
void forgetNotificationObservers();

// NSNotificationCenter's observing and posting record `observe` and `post` when a plug-in does it. Once.
void traceNotificationCenter();

}
