// The classes of SpringBoard's that plug-ins talk to and that show nothing themselves: the application, the
// lock-screen manager, the cover sheet's manager with its idle-timer provider, and Siri. Main thread.
#pragma once

#include "phone/kernel/boot_options.hpp"
#include "phone/uikit/ui_application.hpp"
#include "phone/uikit/ui_view_controller.hpp"

namespace phone {

// The running application: a UIApplication that knows the front-most application's orientation.
struct SpringBoard : objc::subclass<SpringBoard, "SpringBoard", UIApplication> {
    using subclass::subclass;
    objc::handle pluginUserAgent() const;
    NSInteger frontMostAppOrientation() const;   // _frontMostAppOrientation: 1 to 4
};
void defineSpringBoardApplication();
objc::ref<objc::handle> makePluginUserAgent();

struct SBLockScreenManager : objc::subclass<SBLockScreenManager, "SBLockScreenManager", NSObject> {
    using subclass::subclass;
    static SBLockScreenManager sharedInstance();
    BOOL isUILocked() const;
    void requestsUnlock() const;                                   // lockScreenViewControllerRequestsUnlock
    void willDismiss() const;                                      // lockScreenViewControllerWillDismiss
    BOOL finishUIUnlock(int source, objc::handle options) const;   // _finishUIUnlockFromSource:withOptions:
};
void defineLockScreenManager();

// The cover sheet's controller, and what the manager answers by the boot options. Its view lays itself out.
void defineCoverSheet(ClassFamily family, CoverSheetAnswer answer);
objc::ref<UIViewController> makeCoverSheetController(ClassFamily family);
objc::ref<objc::handle> makeCoverSheetManager();

void defineAssistant();
objc::ref<objc::handle> makeAssistant();

}
