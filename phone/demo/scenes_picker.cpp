// Contacts for the strip: from the button of an empty list to the phone that comes up with them.
#include "phone/demo/finger.hpp"
#include "phone/demo/scene.hpp"

namespace phone {

namespace {

using Options = BootOptions&;

void useEmptyList(Options options)
{
    options.ios = { 15, 4 };
    options.contacts = Json::array();
    // From iOS 13 on the strip is dark unless it is told otherwise.
    options.settings = Json::object({ { "darkMode", false } });
    options.passcode.reset();
}

void pick(Phone& device)
{
    Finger const finger(device);
    finger.tapStrip();
    for (char const* const name : { "Zoë Amari", "İbrahim Yıldız", "Jonas Weber" })
        finger.tap(name);
}

constexpr Scene kPickerScenes[] {
    { "refusal", "Not while it is locked", "Contacts can be added only when the passcode has been given.",
        [](Options options) {
            useEmptyList(options);
            options.passcode = "1234";
            options.appearance = Appearance::dark;
            options.settings.reset();
        },
        [](Phone& device) { Finger(device).tapStrip(); } },
    { "picker", "Picking contacts", "The button of an empty strip opens the address book.", useEmptyList,
        pick },
    { "picked", "Picked", "What was picked is written down, and Corvel says what comes next.", useEmptyList,
        [](Phone& device) {
            pick(device);
            Finger(device).tap("Done");
        } },
    { "respring", "After the respring", "The phone has come up again, with the contacts that were picked.",
        useEmptyList,
        [](Phone& device) {
            pick(device);
            Finger const finger(device);
            finger.tap("Done");
            finger.tap("Respring");
        },
        kSecondsToRest, true },
};

}

std::span<Scene const> pickerScenes() { return kPickerScenes; }

}
