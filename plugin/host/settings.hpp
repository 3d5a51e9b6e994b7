// The user's settings, read from the file that the preference bundle writes.
//
// Written by loadSettings() alone (and hideLSView by setHideLSView): at start-up and on every change notification, both on the
// main thread. Read anywhere on the main thread.
#pragma once

#include "plugin/host/view_preferences.hpp"

#include <cstdint>

inline constexpr char kSettingsPath[] = "/var/jb/var/mobile/Library/Preferences/com.orvane.corvelpref.plist";
inline constexpr char kSettingsChanged[] = "com.orvane.corvelpref.settingschanged";

struct Settings {
    // Not in the record, and read live.
    BOOL isEnabled = false;       // the master switch
    BOOL prefsLoaded = false;     // true from the end of the first load on
    BOOL isAlwaysOnTop = false;   // the strip is the first item of the lock screen's list, not the last
    BOOL hideLSView = false;      // the lock-screen strip is hidden until a gesture summons it
    float viewAlphaLS = -1.0f;    // of the overlay strip's background, despite the name; -1: not set
    objc::ref<UIColor> mainViewColorNonLS;   // of the overlay strip's background
    objc::ref<NSString> titleFontString;     // the font name last read
    std::int32_t contactsArraylength = 0;    // entries of the contact list at the last load

    // The fields of viewPreferences, by their names there.
    objc::ref<NSString> styleCustomTitle;
    objc::ref<UIFont> titleFont;   // nil after a load that named a font which is not installed
    float viewAlpha = -1.0f;
    objc::ref<UIColor> colorTitle;
    objc::ref<UIColor> colorContact;
    objc::ref<UIColor> mainViewColor;
    std::int32_t titlePos = 0;
    std::int32_t bannerStyle = 1;
    std::int32_t singleTapAction = 0;
    BOOL isRoundCell = false;
    BOOL isPaging = false;
    BOOL askBeforeCall = false;
    BOOL darkMode = false;
    BOOL showWAmsg = false;
    BOOL showWACall = false;
    BOOL showSMS = false;
    BOOL showFacetime = false;
    BOOL showMail = false;
    BOOL showBirthday = false;
    BOOL siriTurkish = false;
    BOOL birthdayFrame = false;
    BOOL isDynamicSize = false;
    BOOL validateUnlockBeforeCall = false;
    BOOL enableTitle = false;
    BOOL showTGmsg = false;
    BOOL showTGCall = false;
    BOOL siriHebrew = false;
    BOOL isHapticFB = false;   // also read live by every action

    // What the record made last lends: kept until the next one is made, whatever is loaded in between.
    objc::ref<NSString> lentTitle;
    objc::ref<UIFont> lentFont;

    // What the lock-screen hooks ask before they do anything.
    BOOL enabled() const { return isEnabled && prefsLoaded; }
};

Settings const& settings();

// Reads both files and updates every variable. A key that is missing, or whose value is of a kind that has no such conversion,
// takes its default or keeps its previous value, as the table in the source says. Never fails, never raises.
void loadSettings();

// The settings file's keys and values; empty when it is missing or can't be read. Never nil.
objc::ref<NSMutableDictionary> readSettingsFile();

// Stores the value, and writes it into the settings file with the keys of `file`, as it was read. One that could not be read is
// replaced by one that holds this key alone; one that can't be written stays as it is.
void setHideLSView(BOOL hidden, NSMutableDictionary file);

// The record as the variables stand. A title font that is none becomes the system font first. Title and font are lent until the
// next call.
viewPreferences currentPreferences();
