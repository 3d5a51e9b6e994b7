// Touches on the strip: what a tap and a long press bring up, behind the passcode and without it.
#include "phone/demo/finger.hpp"
#include "phone/demo/scene.hpp"

namespace phone {

namespace {

using Options = BootOptions&;

void use(Options options, SystemVersion version, Appearance appearance, Json settings = Json::object())
{
    options.ios = version;
    options.appearance = appearance;
    settings["darkMode"] = appearance == Appearance::dark;
    options.settings = std::move(settings);
}

void tapFirst(Phone& device) { Finger(device).tapContact(); }
void holdFirst(Phone& device) { Finger(device).holdContact(); }

void tapAndUnlock(Phone& device)
{
    Finger const finger(device);
    finger.tapContact();
    finger.typePasscode(*device.options().passcode);
}

constexpr Scene kTouchScenes[] {
    { "haptic", "A tap",
        "The moment of a tap: the motor taps, which the waves at the sides stand for, and the button has faded.",
        [](Options options) {
            use(options, { 16, 1 }, Appearance::dark, { { "singleTapAction", 9 } });
        },
        [](Phone& device) { Finger(device, 0.05).pressContact(1, 0.28); }, 0 },
    { "confirmation", "Asked before a call", "A tap calls, and Corvel asks first.",
        [](Options options) {
            use(options, { 16, 1 }, Appearance::light, { { "singleTapAction", 0 } });
        },
        tapFirst },
    { "call", "A call", "Yes: the call is placed over the lock screen, which stays locked.",
        [](Options options) {
            use(options, { 16, 1 }, Appearance::dark, { { "singleTapAction", 0 } });
        },
        [](Phone& device) {
            Finger const finger(device);
            finger.tapContact();
            finger.tap("Yes");
        } },
    { "facetime", "FaceTime", "A FaceTime call, without being asked.",
        [](Options options) {
            use(options, { 15, 4 }, Appearance::light,
                { { "singleTapAction", 6 }, { "askBeforeCall", false } });
        },
        tapFirst },
    { "passcode", "Behind the passcode",
        "A tap writes a message: on a locked phone the passcode is asked for first.",
        [](Options options) {
            use(options, { 15, 4 }, Appearance::dark, { { "singleTapAction", 5 } });
        },
        tapFirst },
    { "passcode-12.4", "A wrong passcode", "A wrong code shakes and is asked for again, here on iOS 12.4.",
        [](Options options) {
            use(options, { 12, 4 }, Appearance::light, { { "singleTapAction", 5 } });
        },
        [](Phone& device) {
            Finger const finger(device, 0.12);
            finger.tapContact();
            finger.wait(1);
            finger.typePasscode("9876");
        },
        0 },
    { "message", "A message on the lock screen",
        "The right code: the composer comes over the lock screen, and the phone goes no further.",
        [](Options options) {
            use(options, { 15, 4 }, Appearance::dark, { { "singleTapAction", 5 } });
        },
        tapAndUnlock },
    { "mail", "A mail", "A mail is written in the same way.",
        [](Options options) {
            use(options, { 14, 8 }, Appearance::light, { { "singleTapAction", 7 } });
        },
        tapAndUnlock },
    { "whatsapp", "Another app",
        "A message in another application: the phone is unlocked all the way, and the application opens.",
        [](Options options) {
            use(options, { 16, 1 }, Appearance::dark, { { "singleTapAction", 1 } });
        },
        tapAndUnlock },
    { "siri", "Siri is asked",
        "A call in another application: Siri is asked for it in words, here in Turkish.",
        [](Options options) {
            use(options, { 15, 4 }, Appearance::dark, { { "singleTapAction", 4 }, { "siriTurkish", true } });
            options.language = "tr";
        },
        tapAndUnlock },
    { "menu", "A long press", "A long press opens the menu of everything that the settings allow.",
        [](Options options) {
            use(options, { 16, 1 }, Appearance::dark, { { "singleTapAction", 9 } });
        },
        holdFirst },
    { "menu-12.4", "The menu, iOS 12.4",
        "On iOS 12 Siri places no calls in other applications; and what a tap does is not offered again.",
        [](Options options) {
            use(options, { 12, 4 }, Appearance::light);
        },
        holdFirst },
    { "menu-hebrew", "The menu, right to left", "The same on a phone in Hebrew.",
        [](Options options) {
            use(options, { 15, 4 }, Appearance::light, { { "singleTapAction", 9 } });
            options.language = "he";
        },
        [](Phone& device) { Finger(device).holdContact(2); } },
    { "menu-passcode", "The menu after the passcode",
        "If calls are to wait for the passcode, so does the menu: it comes when the code has been given.",
        [](Options options) {
            use(options, { 15, 4 }, Appearance::dark,
                { { "singleTapAction", 5 }, { "validateUnlockBeforeCall", true } });
        },
        [](Phone& device) {
            Finger const finger(device);
            finger.holdContact();
            finger.typePasscode(*device.options().passcode);
        } },
    { "dimmed", "The screen dims", "Left alone, the screen goes dark after its time.",
        [](Options options) {
            use(options, { 15, 4 }, Appearance::dark);
        },
        [](Phone& device) { Finger(device).wait(33); } },
};

}

std::span<Scene const> touchScenes() { return kTouchScenes; }

}
