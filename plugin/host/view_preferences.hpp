// viewPreferences: the settings that a strip is built with, as one plain record that travels by value.
#pragma once

#include "platform/uikit.hpp"

#include <cstdint>

// The order of the fields is fixed: readers address them by position.
struct viewPreferences {
    NSString styleCustomTitle;       // text above the strip; lent
    UIFont titleFont;                // lent
    float viewAlpha;                 // of the lock-screen strip's background, 0 to 1; -1: not set
    UIColor colorTitle;              // nil: the label's own colour
    UIColor colorContact;            // of the name labels; nil: the label's own colour
    UIColor mainViewColor;           // of the lock-screen strip's background; nil: none
    std::uint64_t titlePos;          // 1 left, 2 centre, 3 right; any other: centre
    std::uint64_t bannerStyle;       // 1 blurred card, 2 dark bands, any other: no background
    std::uint64_t singleTapAction;   // what a tap does: see interaction/single_tap.hpp
    BOOL isRoundCell;
    BOOL isPaging;
    BOOL askBeforeCall;
    BOOL darkMode;
    BOOL showWAmsg;
    BOOL showWACall;
    BOOL showSMS;
    BOOL showFacetime;
    BOOL showMail;
    BOOL showBirthday;
    BOOL siriTurkish;
    BOOL birthdayFrame;
    BOOL isDynamicSize;
    BOOL validateUnlockBeforeCall;
    BOOL enableTitle;
    BOOL showTGmsg;
    BOOL showTGCall;
    BOOL siriHebrew;
    BOOL isHapticFB;
};

template <>
struct objc::encoding<viewPreferences> {
    static constexpr fixed_string value { "{viewPreferences=@@f@@@QQQBBBBBBBBBBBBBBBBBBB}" };
};

// A record that lives as long as the process and owns objects of its fields. What it owned before is released when it is
// assigned again.
class OwnedPreferences {
public:
    // initPrefs: the colours are owned; the title and its font are lent by the settings, which keep them.
    // mainPrefsStruct: everything is owned, since it outlives the settings that it was copied from.
    enum class Owns { colours, everything };

    explicit constexpr OwnedPreferences(Owns owns)
        : m_owns(owns)
    {
    }

    viewPreferences const& get() const { return m_record; }
    viewPreferences const* operator->() const { return &m_record; }
    void assign(viewPreferences const& record);
    void releaseAll();   // at process exit

private:
    viewPreferences m_record {};
    objc::ref<NSString> m_title;
    objc::ref<UIFont> m_font;
    objc::ref<UIColor> m_colorTitle;
    objc::ref<UIColor> m_colorContact;
    objc::ref<UIColor> m_mainViewColor;
    Owns m_owns;
};
