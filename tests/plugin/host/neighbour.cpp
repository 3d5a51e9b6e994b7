// A plug-in like others that a user may have: it replaces the very methods that Corvel replaces, passes every call on, and notes
// what it was called with. Loaded before Corvel it is what Corvel's replacements call; loaded after, it is what calls them.
#include "objc/hook.hpp"
#include "platform/springboard.hpp"
#include "platform/substrate.hpp"

#include <string>
#include <utility>

namespace {

std::string g_notes;   // a line a call: selector and arguments

void note(SEL cmd, std::string const& arguments = {}) { g_notes += sel_getName(cmd) + arguments + '\n'; }

struct DidLoad {
    static inline objc::original<void(UIViewController, SEL)> original;
    static void replacement(UIViewController self, SEL cmd)
    {
        note(cmd);
        original(self, cmd);
    }
};
struct UpdateContent {
    static inline objc::original<NSUInteger(UIViewController, SEL)> original;
    static NSUInteger replacement(UIViewController self, SEL cmd)
    {
        note(cmd);
        original(self, cmd);
        return 0x2233445566778899;   // a result that nobody else would give
    }
};
struct InsertItem {
    static inline objc::original<NSUInteger(UIViewController, SEL, objc::handle, BOOL)> original;
    static NSUInteger replacement(UIViewController self, SEL cmd, objc::handle item, BOOL animated)
    {
        note(cmd, (item ? " item " : " nil ") + std::string(animated ? "animated" : "still"));
        original(self, cmd, item, animated);
        return 0x1122334455667788;
    }
};
struct PresentingContent {
    static inline objc::original<BOOL(UIViewController, SEL)> original;
    static BOOL replacement(UIViewController self, SEL cmd)
    {
        note(cmd);
        return original(self, cmd);
    }
};
struct WillDismiss {
    static inline objc::original<NSUInteger(objc::handle, SEL)> original;
    static NSUInteger replacement(objc::handle self, SEL cmd)
    {
        note(cmd);
        original(self, cmd);
        return 77;
    }
};
struct FinishUnlock {
    static inline objc::original<BOOL(objc::handle, SEL, int, objc::handle)> original;
    static BOOL replacement(objc::handle self, SEL cmd, int source, objc::handle options)
    {
        note(cmd, ' ' + std::to_string(source) + (options ? " options" : " nil"));
        return original(self, cmd, source, options);
    }
};
struct DidDisappear {
    static inline objc::original<void(UIViewController, SEL, BOOL)> original;
    static void replacement(UIViewController self, SEL cmd, BOOL animated)
    {
        note(cmd, animated ? " animated" : " still");
        original(self, cmd, animated);
    }
};

Class classOfEither(char const* name, char const* olderName)
{
    Class const cls = objc_getClass(name);
    return cls ? cls : objc_getClass(olderName);
}

template <class Hook>
void replace(Class cls, char const* selector)
{
    auto const [replacement, original] = objc::hook<Hook>();
    MSHookMessageEx(cls, sel_registerName(selector), replacement, original);
}

__attribute__((constructor)) void install()
{
    Class const list = classOfEither(
        "CSNotificationAdjunctListViewController", "SBDashBoardNotificationAdjunctListViewController");
    Class const passcode = classOfEither("CSPasscodeViewController", "SBDashBoardPasscodeViewController");
    Class const manager = objc_getClass("SBLockScreenManager");
    replace<DidLoad>(list, "viewDidLoad");
    replace<UpdateContent>(list, "_updatePresentingContent");
    replace<InsertItem>(list, "_insertItem:animated:");
    replace<PresentingContent>(list, "isPresentingContent");
    replace<WillDismiss>(manager, "lockScreenViewControllerWillDismiss");
    replace<FinishUnlock>(manager, "_finishUIUnlockFromSource:withOptions:");
    replace<DidDisappear>(passcode, "viewDidDisappear:");
}

}

// The notes so far; the next call begins anew.
extern "C" __attribute__((visibility("default"))) char const* takeNeighbourNotes()
{
    static std::string taken;
    taken = std::exchange(g_notes, {});
    return taken.c_str();
}
