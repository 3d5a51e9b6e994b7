#include "phone/springboard/lock_flow.hpp"

#include "phone/apps/applications.hpp"
#include "phone/springboard/lock_screen.hpp"
#include "phone/springboard/passcode_pad.hpp"
#include "phone/springboard/previous.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/ui_screen.hpp"

namespace phone {

namespace {

// Seconds. Together well below the second that an unlock may take.
constexpr double kPasscodeFade = 0.25;
constexpr double kDismissal = 0.4;

constexpr int kUnlockSourcePasscode = 2;

void noteLock(char const* event) { trace().record("lock", { { "event", event } }); }

void notePasscode(char const* event) { trace().record("passcode", { { "event", event } }); }

void passcodeDidDisappear()
{
    notePasscode("disappeared");
    endAppearance(springBoard().passcodeController);
}

// Fades the passcode screen out; `then` runs when it has disappeared.
void hidePasscode(std::function<void()> then)
{
    auto& state = springBoard();
    state.isPasscodeShown = false;
    UIView const view = state.passcodeController->view();
    view.setUserInteractionEnabled(false);
    beginAppearance(state.passcodeController, false, true);
    animate(
        kPasscodeFade, [view] { view.setAlpha(0); },
        [view, then = std::move(then)](bool) {
            view.setHidden(true);
            passcodeDidDisappear();
            if (then)
                then();
        });
}

void showPasscode()
{
    auto& state = springBoard();
    if (state.isPasscodeShown)
        return;
    state.isPasscodeShown = true;
    state.passcodePad->clear();
    UIView const view = state.passcodeController->view();
    beginAppearance(state.passcodeController, true, true);
    view.superview().bringSubviewToFront(view);
    view.setUserInteractionEnabled(true);
    view.setHidden(false);
    view.setAlpha(0);
    notePasscode("shown");
    animate(
        kPasscodeFade, [view] { view.setAlpha(1); },
        [](bool finished) {
            if (finished && springBoard().isPasscodeShown)
                endAppearance(springBoard().passcodeController);
        });
}

void lockScreenDidGo()
{
    auto& state = springBoard();
    if (!state.isDismissing)   // locked again meanwhile
        return;
    state.isDismissing = false;
    state.isLocked = false;
    UIView const view = state.coverSheetController->view();
    state.coverSheetWindow->setHidden(true);
    view.setTransform(kIdentity);
    endAppearance(state.coverSheetController);
    noteLock("dismissed");
}

void dismissLockScreen()
{
    auto& state = springBoard();
    state.isDismissing = true;
    noteLock("willDismiss");
    sendHookable<"lockScreenViewControllerWillDismiss">(state.lockScreenManager);
    if (state.isPasscodeShown)
        hidePasscode({});
    state.homeWindow->setHidden(false);
    if (UIWindow::keyWindow() == state.coverSheetWindow.get())
        state.homeWindow->makeKeyWindow();
    beginAppearance(state.coverSheetController, false, true);
    UIView const view = state.coverSheetController->view();
    double const height = screenBounds().size.height;
    animate(
        kDismissal, [view, height] { view.setTransform(translation(0, -height)); },
        [](bool) { lockScreenDidGo(); });
}

void showLockScreen()
{
    auto& state = springBoard();
    state.isLocked = true;
    state.isPasscodeGiven = false;
    closeApplications();
    beginAppearance(state.coverSheetController, true, false);
    state.lockScreen->setPadlockOpen(!isPasscodeLocked());
    state.lockScreen->updateClock();
    state.coverSheetWindow->makeKeyAndVisible();
    state.lockScreen->updatePresentingContent();
    endAppearance(state.coverSheetController);
    noteLock("shown");
}

void startFinish()
{
    auto& state = springBoard();
    if (state.lockScreenManager->responds<"_finishUIUnlockFromSource:withOptions:">())
        sendHookable<"_finishUIUnlockFromSource:withOptions:", BOOL>(
            state.lockScreenManager, kUnlockSourcePasscode, objc::handle {});
    else
        finishUnlock();
    // Swallowed: the lock screen stays.
    if (!state.isDismissing && state.isPasscodeShown)
        hidePasscode({});
}

}

bool isPasscodeLocked()
{
    auto const& state = springBoard();
    return state.isLocked && !state.isPasscodeGiven && bootOptions().passcode.has_value();
}

void lockPhone()
{
    springBoard().idleTimer.touch();
    lockUntouched();
}

void lockUntouched()
{
    auto& state = springBoard();
    if (state.isPasscodeShown) {
        static_cast<void>(cancelPasscode());
        return;
    }
    if (state.isDismissing) {
        removeAllAnimations(state.coverSheetController->view());
        lockScreenDidGo();
    }
    bool const asksAgain = state.isLocked && state.isPasscodeGiven;
    if (!state.isLocked || asksAgain)
        showLockScreen();
}

void requestUnlock()
{
    auto& state = springBoard();
    trace().record("unlockRequest");
    if (!state.isLocked || state.isDismissing || state.isPasscodeShown)
        return;
    if (isPasscodeLocked())
        showPasscode();
    else
        startFinish();
}

Result<bool> enterPasscode(std::string const& code)
{
    auto& state = springBoard();
    if (!state.isPasscodeShown)
        return Error { "no passcode screen is up" };
    state.idleTimer.touch();
    if (code != bootOptions().passcode) {
        notePasscode("wrong");
        state.passcodePad->refuse();
        return false;
    }
    notePasscode("accepted");
    state.isPasscodeGiven = true;
    state.lockScreen->setPadlockOpen(true);
    startFinish();
    return true;
}

Status cancelPasscode()
{
    if (!springBoard().isPasscodeShown)
        return Error { "no passcode screen is up" };
    notePasscode("cancelled");
    hidePasscode({});
    return {};
}

bool finishUnlock()
{
    auto& state = springBoard();
    if (!state.isLocked || state.isDismissing)
        return false;
    state.isPasscodeGiven = true;
    state.lockScreen->setPadlockOpen(true);
    noteLock("unlockFinished");
    dismissLockScreen();
    return true;
}

}
