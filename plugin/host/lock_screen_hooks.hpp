// What we do in SpringBoard's lock screen: the replacements that the hook table installs.
#pragma once

#include "objc/hook.hpp"
#include "platform/springboard.hpp"

// What a replaced method leaves in the result register, passed through whatever its type; 0 where it is swallowed.
using Answer = NSUInteger;

struct ViewDidLoad {
    static inline objc::original<void(AdjunctListViewController, SEL)> original;
    static void replacement(AdjunctListViewController self, SEL cmd);
};

struct UpdatePresentingContent {
    static inline objc::original<Answer(AdjunctListViewController, SEL)> original;
    static Answer replacement(AdjunctListViewController self, SEL cmd);
};

struct InsertItemAnimated {
    static inline objc::original<Answer(AdjunctListViewController, SEL, objc::handle, BOOL)> original;
    static Answer replacement(AdjunctListViewController self, SEL cmd, objc::handle item, BOOL animated);
};

struct IsPresentingContent {
    static inline objc::original<BOOL(AdjunctListViewController, SEL)> original;
    static BOOL replacement(AdjunctListViewController self, SEL cmd);
};

struct LockScreenViewControllerWillDismiss {
    static inline objc::original<Answer(SBLockScreenManager, SEL)> original;
    static Answer replacement(SBLockScreenManager self, SEL cmd);
};

struct FinishUIUnlock {
    static inline objc::original<Answer(SBLockScreenManager, SEL, int, objc::handle)> original;
    static Answer replacement(SBLockScreenManager self, SEL cmd, int source, objc::handle options);
};

struct PasscodeViewDidDisappear {
    static inline objc::original<void(PasscodeViewController, SEL, BOOL)> original;
    static void replacement(PasscodeViewController self, SEL cmd, BOOL animated);
};

// -initFirstPreferences, added to the adjunct-list controller: fills initPrefs.
void initFirstPreferences(AdjunctListViewController self, SEL cmd);

// The list's stack of arranged items, under the key "_stackView"; nil where the controller has none.
UIStackView stackViewOf(AdjunctListViewController controller);

// Puts the lock screen's strip into the stack, first or last as the settings say, and pins it there: what pinned it before went
// when it left its stack. Nil: nothing happens.
void placeStripInStack(UIStackView stack);
