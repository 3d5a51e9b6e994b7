// Start-up: what happens when SpringBoard loads the library, in order.
#include "objc/define.hpp"
#include "platform/core_foundation.hpp"
#include "plugin/actions/composers.hpp"
#include "plugin/host/activator.hpp"
#include "plugin/host/hook_table.hpp"
#include "plugin/host/host_state.hpp"
#include "plugin/host/settings.hpp"
#include "plugin/host/system_generation.hpp"
#include "plugin/strip/contact_button.hpp"
#include "plugin/strip/contact_cell.hpp"
#include "plugin/strip/strip_state.hpp"

#include <cstdlib>

namespace {

void settingsChanged(CFNotificationCenterRef, void*, NSString, void const*, NSDictionary) { loadSettings(); }

void observeSettings()
{
    CFNotificationCenterAddObserver(CFNotificationCenterGetDarwinNotifyCenter(), nullptr,
        objc::boundary::leaving(&settingsChanged), NSString::stringWithUTF8String(kSettingsChanged), nullptr,
        CFNotificationSuspensionBehaviorCoalesce);
}

void defineClasses()
{
    defineCVLView();
    defineCVLButton();
    defineCVLContactCell();
    defineBAContainingWindow();
    defineComposers();
    defineActivatorListeners();
}

void chooseClasses()
{
    HostState& host = hostState();
    bool const coverSheet = isCoverSheetSystem();
    host.versionClass =
        objc::class_handle { objc_getClass(coverSheet ? "CSNotificationAdjunctListViewController"
                                                      : "SBDashBoardNotificationAdjunctListViewController") };
    host.versionClassPasscode = objc::class_handle { objc_getClass(
        coverSheet ? "CSPasscodeViewController" : "SBDashBoardPasscodeViewController") };
}

// The two records' colours go with the process; nothing else of ours is taken down.
void destroyAtExit(void (*destroy)()) { std::atexit(objc::boundary::leaving(destroy)); }

__attribute__((constructor)) void startUp()
{
    AutoreleasePool const pool;
    defineClasses();
    // Their class load methods: before anything else, as for any class that an image brings.
    ActivatorListenerLS::cls().send<"load">();
    ActivatorListenerNONLS::cls().send<"load">();

    loadSettings();
    observeSettings();
    chooseClasses();
    installHooks();
    destroyAtExit([] { hostState().initPrefs.releaseAll(); });
    destroyAtExit([] { stripState().mainPrefsStruct.releaseAll(); });
}

}
