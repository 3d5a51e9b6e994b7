#include "plugin/host/settings.hpp"

#include "objc/hook.hpp"
#include "phone/kernel/property_list.hpp"
#include "phone/springboard/substrate.hpp"
#include "plugin/host/contact_list.hpp"
#include "tests/support/phone_fixture.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

using phone::PropertyList;
using phone::PropertyListArray;
using phone::PropertyListDictionary;

constexpr double kNewSystem = 1665.15;
constexpr double kOldSystem = 1575.17;

class SettingsFile : public phone::CorvelTest {
protected:
    void boot(double coreFoundation = kNewSystem)
    {
        phone::BootOptions options;
        options.ios =
            coreFoundation > 1600 ? phone::SystemVersion { 13, 0, 0 } : phone::SystemVersion { 12, 4, 0 };
        options.coreFoundation = coreFoundation;
        options.contacts = phone::Json::array();
        CorvelTest::boot(options);
    }

    // The file holds just this, and the loader has run.
    void load(PropertyListDictionary const& file)
    {
        auto const text = phone::writePropertyListXml(file);
        ASSERT_TRUE(text);
        loadText(*text);
    }
    void loadText(std::string const& text)
    {
        auto const written = phone::phone().root().write(
            kSettingsPath, text.data(), text.size(), { .atomically = false, .makesFolders = true });
        ASSERT_TRUE(written);
        loadSettings();
    }
};

struct BooleanRow {
    char const* key;
    BOOL Settings::*held;
    bool whenMissing;
};
constexpr BooleanRow kBooleans[] = {
    { "isEnabled", &Settings::isEnabled, true },
    { "isAlwaysOnTop", &Settings::isAlwaysOnTop, false },
    { "isPaging", &Settings::isPaging, false },
    { "askBeforeCall", &Settings::askBeforeCall, true },
    { "darkMode", &Settings::darkMode, true },
    { "isRoundCell", &Settings::isRoundCell, true },
    { "showWAmsg", &Settings::showWAmsg, true },
    { "showWACall", &Settings::showWACall, true },
    { "showSMS", &Settings::showSMS, true },
    { "showFacetime", &Settings::showFacetime, true },
    { "showMail", &Settings::showMail, true },
    { "showBirthday", &Settings::showBirthday, true },
    { "birthdayFrame", &Settings::birthdayFrame, true },
    { "siriTurkish", &Settings::siriTurkish, false },
    { "isDynamicSize", &Settings::isDynamicSize, true },
    { "validateUnlockBeforeCall", &Settings::validateUnlockBeforeCall, false },
    { "enableTitle", &Settings::enableTitle, true },
    { "hideLSView", &Settings::hideLSView, false },
    { "showTGmsg", &Settings::showTGmsg, true },
    { "showTGCall", &Settings::showTGCall, true },
    { "siriHebrew", &Settings::siriHebrew, false },
    { "isHapticFB", &Settings::isHapticFB, true },
};

// Every kind that a property list can hold, by a value that converts to something recognisable where it converts at all.
PropertyList const kDate { phone::Date { 700000000 } };
PropertyList const kData { phone::Bytes { 1, 2, 3 } };
PropertyList const kArray { PropertyListArray { PropertyList { true }, PropertyList { "7" } } };
PropertyList const kDictionary { PropertyListDictionary { { "1", PropertyList { 1 } } } };
PropertyList const kInconvertible[] = { kDate, kData, kArray, kDictionary };

// Every text that anybody looks up in a dictionary.
std::vector<std::string> g_lookedUp;
struct LookUp {
    static inline objc::original<objc::handle(objc::handle, SEL, objc::handle)> original;
    static objc::handle replacement(objc::handle self, SEL cmd, objc::handle key)
    {
        if (NSString const text = objc::cast<NSString>(key))
            g_lookedUp.emplace_back(text.UTF8String());
        return original(self, cmd, key);
    }
};

// Objects that are owned come and go with references; texts of eight letters and fewer are none.
NSUInteger references(objc::handle object) { return object.send<"retainCount", NSUInteger>(); }

TEST_F(SettingsFile, NothingIsOnBeforeTheFirstLoad)
{
    boot();
    EXPECT_FALSE(settings().prefsLoaded);
    EXPECT_FALSE(settings().enabled());
    EXPECT_EQ(settings().bannerStyle, 1);
    EXPECT_EQ(settings().singleTapAction, 0);
    EXPECT_EQ(settings().viewAlpha, -1.0f);
    EXPECT_EQ(settings().viewAlphaLS, -1.0f);
    for (auto const color : { &Settings::colorTitle, &Settings::colorContact, &Settings::mainViewColor,
             &Settings::mainViewColorNonLS })
        EXPECT_FALSE(settings().*color);
}

TEST_F(SettingsFile, IsOnWhenItIsLoadedAndSwitchedOn)
{
    Settings each;
    EXPECT_FALSE(each.enabled());
    each.isEnabled = true;
    EXPECT_FALSE(each.enabled());
    each.prefsLoaded = true;
    EXPECT_TRUE(each.enabled());
    each.isEnabled = false;
    EXPECT_FALSE(each.enabled());
}

TEST_F(SettingsFile, IsLookedThroughInOrderAfterTheContacts)
{
    boot();
    load({});
    std::vector<std::string> const keys { "contactsArray", "isEnabled", "isAlwaysOnTop", "isPaging",
        "askBeforeCall", "darkMode", "isRoundCell", "showWAmsg", "showWACall", "showSMS", "showFacetime",
        "showMail", "showBirthday", "birthdayFrame", "siriTurkish", "isDynamicSize",
        "validateUnlockBeforeCall", "enableTitle", "hideLSView", "showTGmsg", "showTGCall", "siriHebrew",
        "isHapticFB", "styleCustomTitle", "titleColor", "mainViewColor", "mainViewColorNonLS",
        "contactLabelColor", "styleFont", "titlePos", "bannerStyle", "singleTapAction", "viewAlpha",
        "viewAlphaLS" };
    Class const dictionaries = objc::boundary::class_of(readSettingsFile().get().object);
    auto const [replacement, original] = objc::hook<LookUp>();
    MSHookMessageEx(dictionaries, sel_registerName("objectForKey:"), replacement, original);

    loadSettings();

    // Foundation's own keys are not ours, and it looks a file's key up when it makes the dictionary.
    std::erase_if(g_lookedUp, [&](std::string const& each) { return std::ranges::count(keys, each) == 0; });
    g_lookedUp.erase(std::unique(g_lookedUp.begin(), g_lookedUp.end()), g_lookedUp.end());
    EXPECT_EQ(g_lookedUp, keys);
}

TEST_F(SettingsFile, ABooleanTakesEveryKindThatConverts)
{
    boot();
    for (BooleanRow const& row : kBooleans) {
        SCOPED_TRACE(row.key);
        auto const loaded = [&](PropertyList value) {
            load({ { row.key, value } });
            return settings().*row.held;
        };
        EXPECT_TRUE(loaded(true));
        EXPECT_FALSE(loaded(false));
        EXPECT_TRUE(loaded(1));
        EXPECT_FALSE(loaded(0));
        EXPECT_TRUE(loaded(-3));
        EXPECT_TRUE(loaded(0.5));
        EXPECT_FALSE(loaded(0.0));
        EXPECT_TRUE(loaded("YES"));
        EXPECT_TRUE(loaded("true"));
        EXPECT_TRUE(loaded("1"));
        EXPECT_FALSE(loaded("no"));
        EXPECT_FALSE(loaded("0"));
        EXPECT_FALSE(loaded(""));
    }
}

TEST_F(SettingsFile, ABooleanThatIsMissingOrOfAnotherKindTakesItsDefault)
{
    boot();
    for (BooleanRow const& row : kBooleans) {
        SCOPED_TRACE(row.key);
        for (PropertyList const& value : kInconvertible) {
            load({ { row.key, !row.whenMissing } });
            ASSERT_EQ(settings().*row.held, !row.whenMissing);
            load({ { row.key, value } });
            EXPECT_EQ(settings().*row.held, row.whenMissing) << value.kindName();
        }
        load({ { row.key, !row.whenMissing } });
        load({});
        EXPECT_EQ(settings().*row.held, row.whenMissing);
    }
}

TEST_F(SettingsFile, DarkModeFollowsTheSystemOnlyWhenMissing)
{
    boot(1600.0);   // still the old side
    load({});
    EXPECT_FALSE(settings().darkMode);
    load({ { "darkMode", true } });
    EXPECT_TRUE(settings().darkMode);
}

TEST_F(SettingsFile, DarkModeIsOnJustAboveTheOldSystems)
{
    boot(1600.1);
    load({});
    EXPECT_TRUE(settings().darkMode);
}

TEST_F(SettingsFile, AnEmptyFileGivesEveryDefault)
{
    boot(kOldSystem);
    load({});

    viewPreferences const record = currentPreferences();
    EXPECT_TRUE(settings().prefsLoaded);
    EXPECT_TRUE(settings().enabled());
    EXPECT_FALSE(settings().isAlwaysOnTop);
    EXPECT_FALSE(settings().hideLSView);
    EXPECT_EQ(settings().viewAlphaLS, -1.0f);
    EXPECT_FALSE(settings().mainViewColorNonLS);
    EXPECT_FALSE(settings().titleFontString);
    EXPECT_EQ(settings().contactsArraylength, 0);
    EXPECT_STREQ(record.styleCustomTitle.UTF8String(), "Corvel");
    EXPECT_TRUE(record.titleFont.isEqual(UIFont::systemFontOfSize(10.5, UIFontWeightMedium)));
    EXPECT_EQ(record.viewAlpha, -1.0f);
    EXPECT_FALSE(record.colorTitle);
    EXPECT_FALSE(record.colorContact);
    EXPECT_FALSE(record.mainViewColor);
    EXPECT_EQ(record.titlePos, 2u);
    EXPECT_EQ(record.bannerStyle, 1u);
    EXPECT_EQ(record.singleTapAction, 0u);
    EXPECT_FALSE(record.darkMode);
}

TEST_F(SettingsFile, AMissingFileIsAnEmptyOne)
{
    boot();
    ASSERT_TRUE(phone::phone().root().remove(kSettingsPath));
    loadSettings();
    EXPECT_TRUE(settings().enabled());
    EXPECT_STREQ(settings().styleCustomTitle->UTF8String(), "Corvel");
    EXPECT_EQ(settings().titlePos, 2);
}

TEST_F(SettingsFile, IntegersConvertAndOnlyTheTitlePositionHasADefault)
{
    boot();
    struct Row {
        char const* key;
        std::int32_t Settings::*held;
    };
    for (Row const row :
        { Row { "titlePos", &Settings::titlePos }, Row { "bannerStyle", &Settings::bannerStyle },
            Row { "singleTapAction", &Settings::singleTapAction } }) {
        SCOPED_TRACE(row.key);
        auto const loaded = [&](PropertyList value) {
            load({ { row.key, value } });
            return settings().*row.held;
        };
        EXPECT_EQ(loaded(3), 3);
        EXPECT_EQ(loaded(true), 1);
        EXPECT_EQ(loaded(2.9), 2);
        EXPECT_EQ(loaded("7"), 7);
        EXPECT_EQ(loaded("x"), 0);
        EXPECT_EQ(loaded(-1), -1);
        std::int32_t const whenMissing = std::strcmp(row.key, "titlePos") == 0 ? 2 : 5;
        for (PropertyList const& value : kInconvertible) {
            EXPECT_EQ(loaded(5), 5);
            EXPECT_EQ(loaded(value), whenMissing) << value.kindName();
        }
        EXPECT_EQ(loaded(5), 5);
        load({});
        EXPECT_EQ(settings().*row.held, whenMissing);
    }
}

TEST_F(SettingsFile, ACodeHasThirtyTwoBitsAndIsWidenedWithItsSign)
{
    boot();
    load({ { "titlePos", -1 }, { "bannerStyle", -2 }, { "singleTapAction", -3 } });
    EXPECT_EQ(currentPreferences().titlePos, 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(currentPreferences().bannerStyle, 0xFFFFFFFFFFFFFFFEu);
    EXPECT_EQ(currentPreferences().singleTapAction, 0xFFFFFFFFFFFFFFFDu);

    std::int64_t const beyond = std::int64_t { 1 } << 32;
    load({ { "titlePos", beyond + 3 }, { "bannerStyle", beyond + 2 }, { "singleTapAction", beyond + 7 } });
    EXPECT_EQ(currentPreferences().titlePos, 3u);
    EXPECT_EQ(currentPreferences().bannerStyle, 2u);
    EXPECT_EQ(currentPreferences().singleTapAction, 7u);
}

TEST_F(SettingsFile, AlphasKeepTheirPreviousValue)
{
    boot();
    struct Row {
        char const* key;
        float Settings::*held;
    };
    for (Row const row :
        { Row { "viewAlpha", &Settings::viewAlpha }, Row { "viewAlphaLS", &Settings::viewAlphaLS } }) {
        SCOPED_TRACE(row.key);
        EXPECT_EQ(settings().*row.held, -1.0f);
        load({ { row.key, 0.25 } });
        EXPECT_EQ(settings().*row.held, 0.25f);
        load({ { row.key, 1 } });
        EXPECT_EQ(settings().*row.held, 1.0f);
        load({ { row.key, "0.5" } });
        EXPECT_EQ(settings().*row.held, 0.5f);
        for (PropertyList const& value : kInconvertible) {
            load({ { row.key, value } });
            EXPECT_EQ(settings().*row.held, 0.5f) << value.kindName();
        }
        load({});
        EXPECT_EQ(settings().*row.held, 0.5f);
    }
}

TEST_F(SettingsFile, ColoursAreTextsAndKeepTheirPreviousValue)
{
    boot();
    struct Row {
        char const* key;
        objc::ref<UIColor> Settings::*held;
    };
    for (Row const row :
        { Row { "titleColor", &Settings::colorTitle }, Row { "mainViewColor", &Settings::mainViewColor },
            Row { "mainViewColorNonLS", &Settings::mainViewColorNonLS },
            Row { "contactLabelColor", &Settings::colorContact } }) {
        SCOPED_TRACE(row.key);
        UIColor const red = UIColor::colorWithRed(1, 0, 0, 1);
        EXPECT_FALSE(settings().*row.held);
        load({ { row.key, "#ff0000" } });
        EXPECT_TRUE((settings().*row.held)->isEqual(red));
        for (PropertyList const& value : { kDate, kData, kArray, kDictionary, PropertyList { 7 },
                 PropertyList { true }, PropertyList { 0.5 } }) {
            load({ { row.key, value } });
            EXPECT_TRUE((settings().*row.held)->isEqual(red)) << value.kindName();
        }
        load({});
        EXPECT_TRUE((settings().*row.held)->isEqual(red));
    }
}

TEST_F(SettingsFile, TheTitleIsTheTextAsItIs)
{
    boot();
    load({ { "styleCustomTitle", "" } });
    EXPECT_STREQ(settings().styleCustomTitle->UTF8String(), "");
    load({ { "styleCustomTitle", " מועדפים 👩‍🚀" } });
    EXPECT_STREQ(settings().styleCustomTitle->UTF8String(), " מועדפים 👩‍🚀");
    for (PropertyList const& value : { kDate, kData, kArray, kDictionary, PropertyList { 7 },
             PropertyList { true }, PropertyList { 0.5 } }) {
        load({ { "styleCustomTitle", value } });
        EXPECT_STREQ(settings().styleCustomTitle->UTF8String(), "Corvel") << value.kindName();
    }
}

TEST_F(SettingsFile, TheFontIsNamedAndFallsBackWhenTheRecordIsFilled)
{
    boot();
    UIFont const system = UIFont::systemFontOfSize(10.5, UIFontWeightMedium);

    load({ { "styleFont", "HelveticaNeue-Bold" } });
    EXPECT_TRUE(settings().titleFont->isEqual(UIFont::fontWithName("HelveticaNeue-Bold"_ns, 10.5)));
    EXPECT_STREQ(settings().titleFontString->UTF8String(), "HelveticaNeue-Bold");

    load({ { "styleFont", "NoSuchFont-Wide" } });
    EXPECT_FALSE(settings().titleFont);
    EXPECT_STREQ(settings().titleFontString->UTF8String(), "NoSuchFont-Wide");
    EXPECT_TRUE(currentPreferences().titleFont.isEqual(system));
    EXPECT_TRUE(settings().titleFont->isEqual(system));   // and stays there

    load({});
    EXPECT_TRUE(settings().titleFont->isEqual(system));
    EXPECT_STREQ(settings().titleFontString->UTF8String(), "NoSuchFont-Wide");
}

TEST_F(SettingsFile, TheFontIsMadeAnewAtEachLoad)
{
    boot();
    UIFont const system = UIFont::systemFontOfSize(10.5, UIFontWeightMedium);
    load({});
    EXPECT_TRUE(settings().titleFont->isEqual(system));   // already before a record asks for it
    EXPECT_FALSE(settings().titleFontString);
    for (PropertyList const& value : { kDate, kData, kArray, kDictionary, PropertyList { 7 },
             PropertyList { true }, PropertyList { 0.5 } }) {
        load({ { "styleFont", "Georgia" } });
        EXPECT_FALSE(settings().titleFont->isEqual(system));
        load({ { "styleFont", value } });
        EXPECT_TRUE(settings().titleFont->isEqual(system)) << value.kindName();
        EXPECT_STREQ(settings().titleFontString->UTF8String(), "Georgia");
    }
    load({ { "styleFont", "Georgia" } });
    load({});
    EXPECT_TRUE(settings().titleFont->isEqual(system));
}

TEST_F(SettingsFile, TheRecordHasItsFieldsInTheirOrder)
{
    EXPECT_EQ(offsetof(viewPreferences, styleCustomTitle), 0u);
    EXPECT_EQ(offsetof(viewPreferences, titleFont), 8u);
    EXPECT_EQ(offsetof(viewPreferences, viewAlpha), 16u);
    EXPECT_EQ(offsetof(viewPreferences, colorTitle), 24u);
    EXPECT_EQ(offsetof(viewPreferences, colorContact), 32u);
    EXPECT_EQ(offsetof(viewPreferences, mainViewColor), 40u);
    EXPECT_EQ(offsetof(viewPreferences, titlePos), 48u);
    EXPECT_EQ(offsetof(viewPreferences, bannerStyle), 56u);
    EXPECT_EQ(offsetof(viewPreferences, singleTapAction), 64u);
    EXPECT_EQ(sizeof(viewPreferences), 96u);   // 72, nineteen flags, and what makes it a multiple of eight

    // The nineteen flags: each key alone differs from the rest, and is seen in its place.
    char const* const flags[] = { "isRoundCell", "isPaging", "askBeforeCall", "darkMode", "showWAmsg",
        "showWACall", "showSMS", "showFacetime", "showMail", "showBirthday", "siriTurkish", "birthdayFrame",
        "isDynamicSize", "validateUnlockBeforeCall", "enableTitle", "showTGmsg", "showTGCall", "siriHebrew",
        "isHapticFB" };
    boot();
    for (std::size_t wanted = 0; wanted < std::size(flags); ++wanted) {
        PropertyListDictionary file;
        for (std::size_t i = 0; i < std::size(flags); ++i)
            file.set(flags[i], i == wanted);
        load(file);
        viewPreferences const record = currentPreferences();
        auto const* const bytes = reinterpret_cast<unsigned char const*>(&record) + 72;
        for (std::size_t i = 0; i < std::size(flags); ++i)
            EXPECT_EQ(bytes[i], i == wanted) << flags[wanted] << " at " << flags[i];
    }
}

TEST_F(SettingsFile, TheRecordTakesEveryVariable)
{
    boot();
    load({ { "styleCustomTitle", "Mine" }, { "styleFont", "Georgia" }, { "viewAlpha", 0.75 },
        { "titleColor", "#010203" }, { "contactLabelColor", "#040506" }, { "mainViewColor", "#070809" },
        { "titlePos", 3 }, { "bannerStyle", 2 }, { "singleTapAction", 7 } });

    viewPreferences const record = currentPreferences();
    auto const color = [](int red) {
        return UIColor::colorWithRed(red / 255.0f, (red + 1) / 255.0f, (red + 2) / 255.0f, 1);
    };
    EXPECT_STREQ(record.styleCustomTitle.UTF8String(), "Mine");
    EXPECT_TRUE(record.titleFont.isEqual(UIFont::fontWithName("Georgia"_ns, 10.5)));
    EXPECT_EQ(record.viewAlpha, 0.75f);
    EXPECT_TRUE(record.colorTitle.isEqual(color(1)));
    EXPECT_TRUE(record.colorContact.isEqual(color(4)));
    EXPECT_TRUE(record.mainViewColor.isEqual(color(7)));
    EXPECT_EQ(record.titlePos, 3u);
    EXPECT_EQ(record.bannerStyle, 2u);
    EXPECT_EQ(record.singleTapAction, 7u);
}

TEST_F(SettingsFile, ARecordOwnsItsColoursUntilItIsAssignedAgain)
{
    boot();
    struct Row {
        char const* key;
        UIColor viewPreferences::*field;
    };
    for (Row const row : { Row { "titleColor", &viewPreferences::colorTitle },
             Row { "contactLabelColor", &viewPreferences::colorContact },
             Row { "mainViewColor", &viewPreferences::mainViewColor } }) {
        SCOPED_TRACE(row.key);
        load({ { row.key, "#010203" } });
        OwnedPreferences record { OwnedPreferences::Owns::colours };
        record.assign(currentPreferences());
        auto const color = objc::retain(record.get().*row.field);
        NSUInteger const owned = references(color);

        record.assign(record.get());   // from itself
        EXPECT_EQ(references(color), owned);
        load({ { row.key, "#0a0b0c" } });
        EXPECT_EQ(references(color), owned - 1);   // the settings have let go
        record.releaseAll();
        EXPECT_EQ(references(color), owned - 2);
        EXPECT_FALSE(record.get().*row.field);
    }
}

TEST_F(SettingsFile, ARecordOwnsTitleAndFontOnlyIfItOwnsEverything)
{
    boot();
    load({ { "styleCustomTitle", "A title of many letters" }, { "styleFont", "Georgia" } });
    viewPreferences const lent = currentPreferences();
    for (auto const owns : { OwnedPreferences::Owns::colours, OwnedPreferences::Owns::everything }) {
        NSUInteger const title = references(lent.styleCustomTitle);
        NSUInteger const font = references(lent.titleFont);
        NSUInteger const more = owns == OwnedPreferences::Owns::everything ? 1 : 0;

        OwnedPreferences record { owns };
        record.assign(lent);
        EXPECT_EQ(references(lent.styleCustomTitle), title + more);
        EXPECT_EQ(references(lent.titleFont), font + more);
        record.releaseAll();
        EXPECT_EQ(references(lent.styleCustomTitle), title);
        EXPECT_EQ(references(lent.titleFont), font);
        EXPECT_FALSE(record->styleCustomTitle);
    }
}

TEST_F(SettingsFile, WhatARecordLendsStaysUntilTheNextRecord)
{
    // A load used to take title and font away from a record that a strip was still to be made from.
    boot();
    load({ { "styleCustomTitle", "A title of many letters" }, { "styleFont", "Georgia" } });
    viewPreferences const record = currentPreferences();
    auto const title = objc::retain(record.styleCustomTitle);
    auto const font = objc::retain(record.titleFont);
    NSUInteger const titleHeld = references(title);
    NSUInteger const fontHeld = references(font);

    load({ { "styleCustomTitle", "Another title of many letters" }, { "styleFont", "Menlo" } });
    EXPECT_EQ(references(title), titleHeld - 1);   // the settings have let go, the record's loan goes on
    EXPECT_EQ(references(font), fontHeld - 1);
    load({});
    EXPECT_EQ(references(title), titleHeld - 1);
    EXPECT_EQ(references(font), fontHeld - 1);
    EXPECT_STREQ(currentPreferences().styleCustomTitle.UTF8String(), "Corvel");
    EXPECT_EQ(references(title), titleHeld - 2);
    EXPECT_EQ(references(font), fontHeld - 2);
}

TEST_F(SettingsFile, HidingTheStripKeepsEveryOtherKey)
{
    boot();
    load({ { "titlePos", 3 }, { "styleCustomTitle", "Mine" }, { "unknown", kArray } });

    setHideLSView(true, readSettingsFile());

    EXPECT_TRUE(settings().hideLSView);
    auto const bytes = phone::phone().root().read(kSettingsPath);
    ASSERT_TRUE(bytes);
    auto const file = phone::readPropertyList(*bytes);
    ASSERT_TRUE(file);
    auto const& root = *file->root.as<PropertyListDictionary>();
    EXPECT_EQ(root.size(), 4u);
    EXPECT_EQ(*root.find("hideLSView"), PropertyList { true });
    EXPECT_EQ(*root.find("titlePos"), PropertyList { 3 });
    EXPECT_EQ(*root.find("styleCustomTitle"), PropertyList { "Mine" });
    EXPECT_EQ(*root.find("unknown"), kArray);
}

TEST_F(SettingsFile, AnUnreadableFileIsReplacedWhenTheStripIsHidden)
{
    boot();
    loadText("no property list");
    EXPECT_TRUE(settings().isEnabled);
    setHideLSView(true, readSettingsFile());
    auto const bytes = phone::phone().root().read(kSettingsPath);
    ASSERT_TRUE(bytes);
    auto const file = phone::readPropertyList(*bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->root, (PropertyListDictionary { { "hideLSView", PropertyList { true } } }));
}

TEST_F(SettingsFile, CountsTheContactsAtEveryLoad)
{
    boot();
    auto const write = [](PropertyList list) {
        auto const text = phone::writePropertyListXml(PropertyListDictionary { { "contactsArray", list } });
        ASSERT_TRUE(phone::phone().root().write(kContactListPath, text->data(), text->size()));
    };
    write(PropertyListArray { PropertyListDictionary {}, "no entry", 7 });
    loadSettings();
    EXPECT_EQ(settings().contactsArraylength, 3);
    write("no list");
    loadSettings();
    EXPECT_EQ(settings().contactsArraylength, 0);
}

}
