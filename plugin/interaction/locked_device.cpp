#include "plugin/interaction/locked_device.hpp"

#include "platform/springboard.hpp"
#include "plugin/strip/cvl_view.hpp"

bool deviceIsPasscodeLocked()
{
    return SpringBoard::sharedApplication().pluginUserAgent().deviceIsPasscodeLocked();
}

void requestUnlock() { SBLockScreenManager::sharedInstance().lockScreenViewControllerRequestsUnlock(); }

BOOL CVLView::presentMessageIfDeviceLocked() const
{
    if (!deviceIsPasscodeLocked())
        return false;
    auto const alert = UIAlertController::alertController(
        "Corvel"_ns, "You need to unlock your iPhone before you can do that"_ns, UIAlertControllerStyleAlert);
    auto const nothing = objc::block([](UIAlertAction) {});
    addActionIfAny(alert, UIAlertAction::actionWithTitle("OK"_ns, UIAlertActionStyleCancel, lent(nothing)));
    send<"windowForPrompts:">(alert);
    return true;
}
