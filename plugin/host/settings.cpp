#include "plugin/host/settings.hpp"

#include "platform/core_foundation.hpp"
#include "plugin/host/contact_list.hpp"
#include "plugin/host/system_generation.hpp"
#include "plugin/strip/colors.hpp"

#include <limits>

namespace {

// Never destroyed: it lives as long as SpringBoard does.
Settings& held()
{
    static Settings& settings = *new Settings;
    return settings;
}

constexpr CGFloat kTitleFontSize = 10.5;   // points

// A default that the running system decides: whether its number is above the threshold.
enum class Default { no, yes, coverSheetSystems };

struct BooleanKey {
    char const* key;
    Default whenMissing;
    BOOL Settings::*held;
};

// In the order in which they are read.
constexpr BooleanKey kBooleanKeys[] = {
    { "isEnabled", Default::yes, &Settings::isEnabled },
    { "isAlwaysOnTop", Default::no, &Settings::isAlwaysOnTop },
    { "isPaging", Default::no, &Settings::isPaging },
    { "askBeforeCall", Default::yes, &Settings::askBeforeCall },
    { "darkMode", Default::coverSheetSystems, &Settings::darkMode },
    { "isRoundCell", Default::yes, &Settings::isRoundCell },
    { "showWAmsg", Default::yes, &Settings::showWAmsg },
    { "showWACall", Default::yes, &Settings::showWACall },
    { "showSMS", Default::yes, &Settings::showSMS },
    { "showFacetime", Default::yes, &Settings::showFacetime },
    { "showMail", Default::yes, &Settings::showMail },
    { "showBirthday", Default::yes, &Settings::showBirthday },
    { "birthdayFrame", Default::yes, &Settings::birthdayFrame },
    { "siriTurkish", Default::no, &Settings::siriTurkish },
    { "isDynamicSize", Default::yes, &Settings::isDynamicSize },
    { "validateUnlockBeforeCall", Default::no, &Settings::validateUnlockBeforeCall },
    { "enableTitle", Default::yes, &Settings::enableTitle },
    { "hideLSView", Default::no, &Settings::hideLSView },
    { "showTGmsg", Default::yes, &Settings::showTGmsg },
    { "showTGCall", Default::yes, &Settings::showTGCall },
    { "siriHebrew", Default::no, &Settings::siriHebrew },
    { "isHapticFB", Default::yes, &Settings::isHapticFB },
};

// Missing: the previous colour stays.
struct ColorKey {
    char const* key;
    objc::ref<UIColor> Settings::*held;
};
constexpr ColorKey kColorKeys[] = {
    { "titleColor", &Settings::colorTitle },
    { "mainViewColor", &Settings::mainViewColor },
    { "mainViewColorNonLS", &Settings::mainViewColorNonLS },
    { "contactLabelColor", &Settings::colorContact },
};

constexpr std::int32_t kPreviousStays = std::numeric_limits<std::int32_t>::min();

struct IntegerKey {
    char const* key;
    std::int32_t whenMissing;
    std::int32_t Settings::*held;
};
constexpr IntegerKey kIntegerKeys[] = {
    { "titlePos", 2, &Settings::titlePos },
    { "bannerStyle", kPreviousStays, &Settings::bannerStyle },
    { "singleTapAction", kPreviousStays, &Settings::singleTapAction },
};

// Missing: the previous value stays.
struct FloatKey {
    char const* key;
    float Settings::*held;
};
constexpr FloatKey kFloatKeys[] = {
    { "viewAlpha", &Settings::viewAlpha },
    { "viewAlphaLS", &Settings::viewAlphaLS },
};

UIFont systemTitleFont() { return UIFont::systemFontOfSize(kTitleFontSize, UIFontWeightMedium); }

objc::handle valueOf(NSDictionary file, char const* key)
{
    return file.objectForKey(NSString::stringWithUTF8String(key));
}

// Numbers and texts are what answers boolValue, intValue and floatValue.
NSNumber numberOrText(objc::handle value)
{
    if (objc::cast<NSNumber>(value) || objc::cast<NSString>(value))
        return NSNumber { value.object };
    return nullptr;
}

BOOL defaultOf(Default whenMissing)
{
    return whenMissing == Default::yes || (whenMissing == Default::coverSheetSystems && isCoverSheetSystem());
}

void readTitleFont(objc::handle value)
{
    if (NSString const name = objc::cast<NSString>(value)) {
        held().titleFontString = objc::retain(name);
        held().titleFont = objc::retain(UIFont::fontWithName(name, kTitleFontSize));
    } else {
        held().titleFont = objc::retain(systemTitleFont());
    }
}

}

Settings const& settings() { return held(); }

void loadSettings()
{
    AutoreleasePool const pool;
    auto const file = objc::adopt(
        NSMutableDictionary::alloc().initWithContentsOfFile(NSString::stringWithUTF8String(kSettingsPath)));
    held().contactsArraylength = static_cast<std::int32_t>(readContactList().count());

    for (BooleanKey const& row : kBooleanKeys) {
        NSNumber const value = numberOrText(valueOf(file, row.key));
        held().*row.held = value ? value.boolValue() : defaultOf(row.whenMissing);
    }
    NSString const title = objc::cast<NSString>(valueOf(file, "styleCustomTitle"));
    held().styleCustomTitle = objc::retain(title ? title : "Corvel"_ns);
    for (ColorKey const& row : kColorKeys)
        if (NSString const text = objc::cast<NSString>(valueOf(file, row.key)))
            held().*row.held = objc::retain(colorWithHexString(text));
    readTitleFont(valueOf(file, "styleFont"));
    for (IntegerKey const& row : kIntegerKeys) {
        if (NSNumber const value = numberOrText(valueOf(file, row.key)))
            held().*row.held = value.intValue();
        else if (row.whenMissing != kPreviousStays)
            held().*row.held = row.whenMissing;
    }
    for (FloatKey const& row : kFloatKeys)
        if (NSNumber const value = numberOrText(valueOf(file, row.key)))
            held().*row.held = value.floatValue();

    held().prefsLoaded = true;
}

objc::ref<NSMutableDictionary> readSettingsFile()
{
    auto file = objc::adopt(
        NSMutableDictionary::alloc().initWithContentsOfFile(NSString::stringWithUTF8String(kSettingsPath)));
    return file ? file : objc::retain(NSMutableDictionary::dictionary());
}

void setHideLSView(BOOL hidden, NSMutableDictionary file)
{
    held().hideLSView = hidden;
    NSString const key = "hideLSView"_ns;
    NSNumber const value = NSNumber::numberWithBool(hidden);
    if (key && value)   // a dictionary raises for nil
        file.setObject(value, key);
    file.writeToFile(NSString::stringWithUTF8String(kSettingsPath), /* atomically: */ true);
}

viewPreferences currentPreferences()
{
    Settings& held = ::held();
    if (!held.titleFont)
        held.titleFont = objc::retain(systemTitleFont());
    held.lentTitle = held.styleCustomTitle;
    held.lentFont = held.titleFont;

    // The 32-bit codes are widened with their sign: a negative one is beyond every table.
    auto const widened = [](std::int32_t code) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(code));
    };
    return {
        .styleCustomTitle = held.lentTitle,
        .titleFont = held.lentFont,
        .viewAlpha = held.viewAlpha,
        .colorTitle = held.colorTitle,
        .colorContact = held.colorContact,
        .mainViewColor = held.mainViewColor,
        .titlePos = widened(held.titlePos),
        .bannerStyle = widened(held.bannerStyle),
        .singleTapAction = widened(held.singleTapAction),
        .isRoundCell = held.isRoundCell,
        .isPaging = held.isPaging,
        .askBeforeCall = held.askBeforeCall,
        .darkMode = held.darkMode,
        .showWAmsg = held.showWAmsg,
        .showWACall = held.showWACall,
        .showSMS = held.showSMS,
        .showFacetime = held.showFacetime,
        .showMail = held.showMail,
        .showBirthday = held.showBirthday,
        .siriTurkish = held.siriTurkish,
        .birthdayFrame = held.birthdayFrame,
        .isDynamicSize = held.isDynamicSize,
        .validateUnlockBeforeCall = held.validateUnlockBeforeCall,
        .enableTitle = held.enableTitle,
        .showTGmsg = held.showTGmsg,
        .showTGCall = held.showTGCall,
        .siriHebrew = held.siriHebrew,
        .isHapticFB = held.isHapticFB,
    };
}
