#include "objc/define.hpp"
#include "phone/springboard/lock_flow.hpp"
#include "phone/springboard/object_values.hpp"
#include "phone/springboard/previous.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/system_classes.hpp"

namespace phone {

SBLockScreenManager SBLockScreenManager::sharedInstance()
{
    return SBLockScreenManager { springBoard().lockScreenManager.get().object };
}

BOOL SBLockScreenManager::isUILocked() const { return springBoard().isLocked; }

void SBLockScreenManager::requestsUnlock() const
{
    notePrevious<SBLockScreenManager, "lockScreenViewControllerRequestsUnlock">();
    requestUnlock();
}

void SBLockScreenManager::willDismiss() const
{
    notePrevious<SBLockScreenManager, "lockScreenViewControllerWillDismiss">();
}

BOOL SBLockScreenManager::finishUIUnlock(int source, objc::handle options) const
{
    notePrevious<SBLockScreenManager, "_finishUIUnlockFromSource:withOptions:">(
        Json::array({ source, objectValue(options) }), springBoard().isLocked);
    return finishUnlock();
}

void defineLockScreenManager()
{
    objc::define<SBLockScreenManager>()
        .class_method<"sharedInstance", &SBLockScreenManager::sharedInstance>()
        .method<"isUILocked", &SBLockScreenManager::isUILocked>()
        .method<"lockScreenViewControllerRequestsUnlock", &SBLockScreenManager::requestsUnlock>()
        .method<"lockScreenViewControllerWillDismiss", &SBLockScreenManager::willDismiss>()
        .method<"_finishUIUnlockFromSource:withOptions:", &SBLockScreenManager::finishUIUnlock>()
        .install();
}

}
