#include "plugin/host/hook_table.hpp"

#include "platform/substrate.hpp"
#include "plugin/host/activator.hpp"
#include "plugin/host/host_state.hpp"
#include "plugin/host/lock_screen_hooks.hpp"

namespace {

struct HookRow {
    char const* selector;
    objc::hook_pair (*hook)();   // a method that is replaced
    IMP (*added)() = nullptr;    // a method that is added, if the class has none of that name
};

constexpr HookRow kAdjunctListRows[] = {
    { "viewDidLoad", objc::hook<ViewDidLoad> },
    { "activatorNONLS", nullptr, objc::added_method<&activatorNONLS> },
    { "activatorLS", nullptr, objc::added_method<&activatorLS> },
    { "_updatePresentingContent", objc::hook<UpdatePresentingContent> },
    { "_insertItem:animated:", objc::hook<InsertItemAnimated> },
    { "isPresentingContent", objc::hook<IsPresentingContent> },
    { "cvlViewSwipeUp", nullptr, objc::added_method<&cvlViewSwipeUp> },
    { "initFirstPreferences", nullptr, objc::added_method<&initFirstPreferences> },
};

constexpr HookRow kLockScreenManagerRows[] = {
    { "lockScreenViewControllerWillDismiss", objc::hook<LockScreenViewControllerWillDismiss> },
    { "_finishUIUnlockFromSource:withOptions:", objc::hook<FinishUIUnlock> },
};

constexpr HookRow kPasscodeRows[] = {
    { "viewDidDisappear:", objc::hook<PasscodeViewDidDisappear> },
};

template <std::size_t N>
void install(objc::class_handle cls, HookRow const (&rows)[N])
{
    for (HookRow const& row : rows) {
        SEL const selector = sel_registerName(row.selector);
        if (row.added) {
            class_addMethod(cls.get(), selector, objc::boundary::leaving(row.added()),
                objc::method_encoding<void>.c_str());
        } else {
            auto const [replacement, original] = row.hook();
            MSHookMessageEx(cls.get(), selector, objc::boundary::leaving(replacement), original);
        }
    }
}

}

void installHooks()
{
    install(hostState().versionClass, kAdjunctListRows);
    install(objc::class_handle { objc_getClass("SBLockScreenManager") }, kLockScreenManagerRows);
    install(hostState().versionClassPasscode, kPasscodeRows);
}
