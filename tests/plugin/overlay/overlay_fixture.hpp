// A phone on which the two gestures are made, and what is looked at then: the overlay strip, its window, the application in
// front of which it lies, and the settings file.
#pragma once

#include "phone/kernel/property_list.hpp"
#include "tests/support/phone_fixture.hpp"

namespace phone {

inline constexpr char kOverlayGesture[] = "com.orvane.corvelNONLS";
inline constexpr char kLockScreenGesture[] = "com.orvane.corvelLS";
inline constexpr char kSettingsFile[] = "/var/jb/var/mobile/Library/Preferences/com.orvane.corvelpref.plist";
inline constexpr char kContactListFile[] =
    "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist";

using Lines = std::vector<std::string>;

class OverlayTest : public CorvelTest {
protected:
    // An unlocked phone with an application in front.
    static void bootWithApplication(BootOptions options);

    // The gesture, which has to reach its listener.
    static void gesture(char const* listener = kOverlayGesture);
    // And what it sets going comes to its end.
    static void summon();
    static void wait(double seconds) { ASSERT_TRUE(phone().advance(seconds)); }
    static void turn(int orientation, OrientationNotifications notifications = {})
    {
        ASSERT_TRUE(phone().setOrientation(orientation, notifications));
    }

    // The window that the overlay strip is or was in: the last one made. Nil before the first gesture.
    static UIWindow overlayWindow();
    static bool isOverlayOnScreen() { return bool(phone().overlay()); }

    // In points of the screen as it stands.
    static CGRect onScreen(UIView view);
    static CGPoint middleOnScreen(UIView view);
    static UIView contactButton(UIView strip, std::size_t index = 0);   // from the leading side
    // What a finger there would touch.
    static UIView touchedAt(CGPoint point);

    // How many touches have reached the application in front, and where the last one did.
    static int touchesInApplication();
    static CGPoint lastTouchInApplication();

    // The file's keys; the test fails, and there are none, when it can't be read.
    static PropertyListDictionary settingsFile();
    static Bytes settingsBytes();
    static void putSettings(Bytes const& contents);
    static void putContacts(std::size_t count);
};

}
