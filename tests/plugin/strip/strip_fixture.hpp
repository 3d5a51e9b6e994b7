// Strips of every kind on one phone: the one that the lock screen made, and strips that a test makes itself by the
// plug-in's initialiser, from a record, a frame and the contact list file. Everything goes through the runtime, as
// on a device.
#pragma once

#include "phone/uikit/ui_color.hpp"
#include "phone/uikit/ui_font.hpp"
#include "tests/support/phone_fixture.hpp"

#include <cstdint>

namespace phone {

// The settings record by value, fields in the plug-in's order; unless a test says otherwise, those of an empty
// settings file. Objects are lent.
struct StripRecord {
    NSString title;
    UIFont font;
    float alpha { -1 };
    UIColor titleColor;
    UIColor nameColor;
    UIColor tint;
    std::uint64_t titlePosition { 2 };
    std::uint64_t style { 1 };
    std::uint64_t singleTap { 0 };
    BOOL isRound { true };
    BOOL isPaging { false };
    BOOL asksBeforeCall { true };
    BOOL isDark { false };
    BOOL showsWhatsAppMessage { true };
    BOOL showsWhatsAppCall { true };
    BOOL showsSms { true };
    BOOL showsFaceTime { true };
    BOOL showsMail { true };
    BOOL showsBirthday { true };
    BOOL speaksTurkish { false };
    BOOL hasBirthdayFrame { true };
    BOOL isDynamic { true };
    BOOL validatesUnlock { false };
    BOOL hasTitle { true };
    BOOL showsTelegramMessage { true };
    BOOL showsTelegramCall { true };
    BOOL speaksHebrew { false };
    BOOL isHaptic { true };
};

class StripTest : public CorvelTest {
protected:
    // The record of an empty settings file; after boot.
    static StripRecord record();

    // Replaces the contact list file.
    static void writeContacts(Json const& entries);

    // A strip of the test's own; it owns itself, as the plug-in's do.
    static UIView makeStrip(CGRect frame, StripRecord const& record, bool isOverlay = false);
    // The frame that the lock screen gives its strip.
    static CGRect lockScreenFrame();

    // In a window of its own in front of the others, laid out.
    static void show(UIView strip);

    static UIView collectionView(UIView strip) { return strip.send<"collectionView", UIView>(); }
    // By item, those in sight.
    static std::vector<UIView> cells(UIView strip);
    static std::vector<UIView> buttons(UIView strip);   // the contacts'

    // With every property, and the same in every run.
    static Json tree(UIView view);
};

// A tree has at least what is expected: the keys named, numbers to a billionth of a point, children one for one.
void expectTree(Json const& actual, Json const& expected, std::string const& where = "strip");

inline Json rect(double x, double y, double width, double height)
{
    return { { "rect", { x, y, width, height } } };
}
inline Json color(double red, double green, double blue, double alpha)
{
    return { { "color", { red, green, blue, alpha } } };
}

}
