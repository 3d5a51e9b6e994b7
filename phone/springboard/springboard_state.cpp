#include "phone/springboard/springboard_state.hpp"

#include "phone/apps/applications.hpp"
#include "phone/apps/apps.hpp"
#include "phone/apps/availability.hpp"
#include "phone/apps/haptics.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/adjunct_list.hpp"
#include "phone/springboard/home_screen.hpp"
#include "phone/springboard/lock_flow.hpp"
#include "phone/springboard/lock_screen.hpp"
#include "phone/springboard/media_card.hpp"
#include "phone/springboard/music.hpp"
#include "phone/springboard/passcode_pad.hpp"
#include "phone/springboard/previous.hpp"
#include "phone/springboard/system_classes.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/touch_delivery.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"
#include "phone/uikit/ui_screen.hpp"

#include <array>
#include <cmath>
#include <numbers>

namespace phone {

namespace {

// Over the home screen and applications, under alerts.
constexpr double kCoverSheetLevel = 1050;

constexpr double kMinute = 60;

constexpr double kTurnSeconds = 0.3;   // for a quarter: UIKit's statusBarOrientationAnimationDuration

std::unique_ptr<SpringBoardState>& running()
{
    // Never destroyed: objects must not go after the runtime's own end.
    static auto& state = *new std::unique_ptr<SpringBoardState>;
    return state;
}

template <objc::fixed_string Name>
struct NamedWindow : objc::subclass<NamedWindow<Name>, Name, UIWindow> {
    using NamedWindow::subclass::subclass;
};

template <objc::fixed_string Name>
objc::ref<UIWindow> makeWindow(double level, UIViewController root)
{
    objc::define<NamedWindow<Name>>().install();
    TraceOwnScope const own;
    auto const window = make<NamedWindow<Name>>(screenBounds());
    window->setWindowLevel(level);
    window->setRootViewController(root);
    return objc::retain(UIWindow(window.get()));
}

CoverSheetAnswer coverSheetAnswer()
{
    auto const& options = bootOptions();
    return options.coverSheet.value_or(
        options.ios.major <= 12 ? CoverSheetAnswer::dashBoard : CoverSheetAnswer::coverSheet);
}

void startClockUpdates()
{
    auto const update = [] {
        springBoard().lockScreen->updateClock();
        springBoard().home->updateClock();
    };
    double const seconds = clock().date().sinceReference;
    double const toNextMinute = kMinute - std::fmod(std::fmod(seconds, kMinute) + kMinute, kMinute);
    clock().at(toNextMinute, kMinute, update);
}

void setDimmed(bool isDimmed)
{
    springBoard().isDimmed = isDimmed;
    screenState().isDimmed = isDimmed;
    noteDisplayChange();
}

// A lock screen that guards the phone already stays as it is.
void idleTimeIsUp()
{
    auto const& state = springBoard();
    TraceOwnScope const own;
    if (!state.isLocked || state.isPasscodeGiven || state.isPasscodeShown)
        lockUntouched();
}

}

SpringBoardState::SpringBoardState() = default;
SpringBoardState::~SpringBoardState() = default;

SpringBoardState& springBoard() { return *running(); }

bool isSpringBoardInstalled() { return running() != nullptr; }

void installSpringBoard(std::unique_ptr<SpringBoardState> state) { running() = std::move(state); }

void defineSpringBoardClasses(ClassFamily family)
{
    defineSpringBoardApplication();
    defineLockScreenManager();
    defineAdjunctList(family);
    definePasscode(family);
    defineCoverSheet(family, coverSheetAnswer());
    defineAssistant();
    defineMediaCard();
    defineHomeScreen();
    defineApplications();
}

void startSpringBoard(bool isMusicPlaying)
{
    auto& state = springBoard();
    state.lockScreenManager = objc::adopt(SBLockScreenManager::alloc().init<objc::handle>());
    state.pluginUserAgent = makePluginUserAgent();
    state.coverSheetManager = makeCoverSheetManager();
    state.assistant = makeAssistant();

    state.homeController = makeHomeController();
    state.coverSheetController = makeCoverSheetController(state.family);
    state.adjunctController = makeAdjunctListController(state.family);
    state.passcodeController = makePasscodeController(state.family);

    state.homeWindow = makeWindow<"SBHomeScreenWindow">(UIWindowLevelNormal, state.homeController);
    state.home = std::make_unique<HomeScreenScene>(state.homeController->view());
    state.homeWindow->makeKeyAndVisible();

    state.coverSheetWindow = makeWindow<"SBCoverSheetWindow">(kCoverSheetLevel, state.coverSheetController);
    UIView const coverSheet = state.coverSheetController->view();
    state.coverSheetController->addChildViewController(state.adjunctController);
    state.coverSheetController->addChildViewController(state.passcodeController);
    {
        // The adjunct controller's view loads here, and a plug-in's replacement of viewDidLoad with it.
        CalloutScope const scope(state.adjunctController.get(), objc::selector<"viewDidLoad">());
        state.adjunctController->loadViewIfNeeded();
    }
    state.lockScreen = std::make_unique<LockScreenScene>(coverSheet, state.adjunctController);
    state.passcodePad = std::make_unique<PasscodePad>(state.passcodeController);
    coverSheet.addSubview(state.passcodeController->view());
    state.adjunctController->didMoveToParentViewController(state.coverSheetController);
    state.passcodeController->didMoveToParentViewController(state.coverSheetController);

    startClockUpdates();
    state.idleTimer.setDimming(setDimmed);
    state.idleTimer.setExpiry(idleTimeIsUp);
    touchDelivery().setObserver([] { springBoard().idleTimer.touch(); });
    applyAbsentCommands();
    startApplications();
    startHaptics();
    if (isMusicPlaying)
        setMusicPlaying(true, false);
    if (bootOptions().locked)
        lockPhone();
    else
        state.lockScreen->updatePresentingContent();
    layOutSpringBoard();
}

void layOutSpringBoard()
{
    auto& state = springBoard();
    for (UIWindow const window : { state.homeWindow.get(), state.coverSheetWindow.get() }) {
        window.setFrame(screenBounds());
        UIView const view = window.rootViewController().view();
        if (isIdentity(view.transform()))
            view.setFrame(window.bounds());
        view.setNeedsLayout();
    }
    layOutApplications();
    layoutWindowsIfNeeded();
}

void turnSpringBoard(int from)
{
    // Quarters to the right of upright in which the interface stands on the display.
    static constexpr std::array kQuarters { 0, 0, 2, 1, 3 };
    auto const quarters = [](int orientation) { return kQuarters[static_cast<std::size_t>(orientation)]; };
    int const turned = (quarters(from) - quarters(screenOrientation()) + 4) % 4;
    if (turned == 0)
        return;
    double const angle = (turned == 3 ? -1 : turned) * std::numbers::pi / 2;
    auto& state = springBoard();
    for (UIWindow const window : { state.homeWindow.get(), state.coverSheetWindow.get() }) {
        UIView const view = window.rootViewController().view();
        if (window.isHidden() || !isIdentity(view.transform()))
            continue;
        view.setTransform(rotation(angle));
        animateWithOptions(kTurnSeconds * (turned == 2 ? 2 : 1), 0, AnimationOption::allowUserInteraction,
            [view] { view.setTransform(kIdentity); });
    }
}

}
