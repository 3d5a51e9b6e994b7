// What SpringBoard knows and holds while it runs: one record, made at boot. Its own files read and write it;
// Phone and automation look through Phone. Main thread.
#pragma once

#include "phone/kernel/services.hpp"
#include "phone/springboard/idle_timer.hpp"
#include "phone/uikit/ui_application.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_window.hpp"

#include <memory>
#include <string>

namespace phone {

class LockScreenScene;
class HomeScreenScene;
class PasscodePad;

inline constexpr char const* kSpringBoardIdentifier = "com.apple.springboard";

struct SpringBoardState {
    SpringBoardState();
    SpringBoardState(SpringBoardState const&) = delete;
    SpringBoardState& operator=(SpringBoardState const&) = delete;
    ~SpringBoardState();

    ClassFamily family { ClassFamily::coverSheet };

    // The lock screen is up; its passcode has been given (or there is none); the passcode screen is up; the
    // lock screen is on its way out.
    bool isLocked { false };
    bool isPasscodeGiven { false };
    bool isPasscodeShown { false };
    bool isDismissing { false };
    bool isDimmed { false };
    bool isMusicPlaying { false };
    std::string frontMost { kSpringBoardIdentifier };
    IdleTimer idleTimer { deviceClock() };

    objc::ref<UIApplication> application;
    objc::ref<objc::handle> pluginUserAgent;
    objc::ref<objc::handle> lockScreenManager;
    objc::ref<objc::handle> coverSheetManager;
    objc::ref<objc::handle> assistant;
    objc::ref<objc::handle> mediaItem;   // while music plays

    objc::ref<UIWindow> homeWindow;
    objc::ref<UIWindow> coverSheetWindow;
    objc::ref<UIViewController> homeController;
    objc::ref<UIViewController> coverSheetController;
    objc::ref<UIViewController> adjunctController;
    objc::ref<UIViewController> passcodeController;
    std::unique_ptr<HomeScreenScene> home;
    std::unique_ptr<LockScreenScene> lockScreen;
    std::unique_ptr<PasscodePad> passcodePad;
};

// The running SpringBoard. Boot has to have made it.
SpringBoardState& springBoard();

// Boot's: takes the record over, and makes SpringBoard's windows and controllers with the hooks in force.
void installSpringBoard(std::unique_ptr<SpringBoardState> state);
bool isSpringBoardInstalled();

// Defines every class of SpringBoard's for the family, under the family's names. Before plug-ins load.
void defineSpringBoardClasses(ClassFamily family);
void startSpringBoard(bool isMusicPlaying);

// The screen has turned: windows take its bounds and lay out anew.
void layOutSpringBoard();
// And what they show turns into place, from how it stood in this orientation.
void turnSpringBoard(int from);

}
