// UIWindow: the root of a view tree on the screen. Main thread.
#pragma once

#include "phone/uikit/ui_view.hpp"

// UIWindowLevel, as UIKit exports it.
extern "C" {
extern double const UIWindowLevelNormal;
extern double const UIWindowLevelAlert;
extern double const UIWindowLevelStatusBar;
}

namespace phone {

struct UIWindow : objc::subclass<UIWindow, "UIWindow", UIView> {
    using subclass::subclass;
    UIWindow initWithFrame(CGRect frame) const;   // hidden until it is shown
    static UIWindow keyWindow();                  // nil for none

    CGFloat windowLevel() const;
    void setWindowLevel(CGFloat level) const;
    UIViewController rootViewController() const;
    void setRootViewController(UIViewController controller) const;   // its view fills the window
    void makeKeyAndVisible() const;
    void makeKeyWindow() const;
    void resignKeyWindow() const;
    BOOL isKeyWindow() const;
    void setHidden(BOOL hidden) const;
    BOOL isSecure() const;
    void setSecure(BOOL secure) const;   // _setSecure:
    BOOL autorotates() const;
    // One that does not lies in the display's own space, as the phone is held upright: when the screen turns, it stays with the
    // display, and its transform turns what is in it. One that does keeps to the space of the screen's bounds.
    void setAutorotates(BOOL autorotates) const;
    UIResponder nextResponder() const;   // the application

    // A number for each window, in the order in which they were made, from 1; the trace's `window`.
    int number() const;

    // Rows of the table: the same as a message, with the trace's `window`.
    UIWindow initWithFrameMessage(CGRect frame) const;
    void setFrameMessage(CGRect frame) const;
    void setWindowLevelMessage(CGFloat level) const;
    void setRootViewControllerMessage(UIViewController controller) const;
    void setHiddenMessage(BOOL hidden) const;
    void makeKeyAndVisibleMessage() const;
    void makeKeyWindowMessage() const;
    void setSecureMessage(BOOL secure) const;
    void setAutorotatesMessage(BOOL autorotates) const;
    void setUserInteractionEnabledMessage(BOOL enabled) const;
    void setTintColorMessage(UIColor color) const;
    void setBackgroundColorMessage(UIColor color) const;
};

// What the display's corners, camera and home indicator cover, turned with the orientation; by the screen's
// size. Zero for screens with a home button.
UIEdgeInsets safeAreaOfScreen();

// The screen has turned from this orientation to the present one: windows that fill it take its new bounds, and those that don't
// rotate stay where they are on the display.
void turnWindows(int from);

// All windows, back to front: by level, then by the time at which they were last shown.
std::vector<UIWindow> allWindows();
// Makes the window key. When it hides or goes, the one that was key before it is key again.
void setKeyWindow(UIWindow window);

// Lays out what needs it in every window. Runs by itself at the end of the turn in which something changed;
// whoever draws calls it first.
void layoutWindowsIfNeeded();

void defineUIWindow();

}
