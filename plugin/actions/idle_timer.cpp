#include "plugin/actions/idle_timer.hpp"

namespace {

// Like key-value coding, but nil for a key that the object does not have.
objc::handle safeValue(NSObject object, NSString key)
{
    return object.ask<"safeValueForKey:", objc::handle>(key);
}

NSString reason() { return "CVL"_ns; }

}

IdleTimerProvider currentIdleTimerProvider()
{
    auto const manager = SBCoverSheetPresentationManager::sharedInstance();
    if (manager.responds<"dashBoardViewController">())
        return IdleTimerProvider {
            safeValue(manager.dashBoardViewController(), "_idleTimerProvider"_ns).object
        };
    if (manager.responds<"coverSheetViewController">()) {
        auto const controller = manager.coverSheetViewController().ask<"idleTimerController", NSObject>();
        return IdleTimerProvider { safeValue(controller, "_dashBoardIdleTimerProvider"_ns).object };
    }
    return nullptr;
}

void holdIdleTimer() { currentIdleTimerProvider().addDisabledIdleTimerAssertionReason(reason()); }
void releaseIdleTimer() { currentIdleTimerProvider().removeDisabledIdleTimerAssertionReason(reason()); }
