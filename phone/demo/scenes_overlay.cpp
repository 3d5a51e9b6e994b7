// The overlay strip above whatever is in front, and the gesture that puts the lock screen's strip away.
#include "phone/demo/scene.hpp"

namespace phone {

namespace {

constexpr char kOverlayGesture[] = "com.orvane.corvelNONLS";
constexpr char kLockScreenGesture[] = "com.orvane.corvelLS";
constexpr char kApplication[] = "com.apple.mobilenotes";

void bootUnlocked(BootOptions& options)
{
    options.ios = { 15, 4 };
    options.locked = false;
    options.settings = Json::object({ { "darkMode", false } });
}
void bootUnlockedInTheDark(BootOptions& options)
{
    options.ios = { 16, 1 };
    options.locked = false;
    options.appearance = Appearance::dark;
}

void settle(Phone& device) { static_cast<void>(device.advance(kSecondsToRest)); }

void openApplication(Phone& device)
{
    static_cast<void>(device.launch(kApplication));
    settle(device);
}

void showOverApplication(Phone& device)
{
    openApplication(device);
    device.activate(kOverlayGesture);
    settle(device);
}

template <int Orientation>
void showTurned(Phone& device)
{
    openApplication(device);
    static_cast<void>(device.setOrientation(Orientation));
    settle(device);
    device.activate(kOverlayGesture);
}

template <int Milliseconds>
void showFor(Phone& device)
{
    openApplication(device);
    device.activate(kOverlayGesture);
    static_cast<void>(device.advance(Milliseconds / 1000.0));
}

template <int Milliseconds>
void turnFor(Phone& device)
{
    showOverApplication(device);
    static_cast<void>(device.setOrientation(3));
    static_cast<void>(device.advance(Milliseconds / 1000.0));
}

constexpr Scene kOverlayScenes[] {
    { "overlay", "Over an application",
        "A gesture has brought a second strip down over the application in front. It takes the touches that it "
        "lies under; the one beside it has reached the application, which shows where.",
        bootUnlocked,
        [](Phone& device) {
            showOverApplication(device);
            device.tap({ 120, 190 });
            device.tap({ 270, 610 });
        } },
    { "overlay-dark", "In the dark", "The same in the dark appearance, with five contacts at a time.",
        bootUnlockedInTheDark, showOverApplication },
    { "overlay-coming-1", "Coming, 0.1 s", "A tenth of a second after the gesture.", bootUnlocked,
        showFor<100>, 0 },
    { "overlay-coming-2", "Coming, 0.2 s", "Two tenths after the gesture, of three that the way takes.",
        bootUnlockedInTheDark, showFor<200>, 0 },
    { "overlay-leaving", "Swiped away, 0.1 s", "A swipe up puts it away, in two tenths of a second.",
        bootUnlocked,
        [](Phone& device) {
            showOverApplication(device);
            device.activate(kOverlayGesture);
            static_cast<void>(device.advance(0.1));
        },
        0 },
    { "overlay-turning", "Turning, 0.1 s",
        "The phone is laid on its side: the strip turns to the new upper edge.", bootUnlocked, turnFor<100>,
        0 },
    { "overlay-turning-dark", "Turning, 0.2 s", "A tenth of a second later, in the dark appearance.",
        bootUnlockedInTheDark, turnFor<200>, 0 },
    { "overlay-landscape-3", "On its left side",
        "Shown on a phone that lies on its side: across the middle of the upper edge.", bootUnlocked,
        showTurned<3> },
    { "overlay-landscape-4", "On its right side", "And on the other side.", bootUnlockedInTheDark,
        showTurned<4> },
    { "overlay-upside-down", "Upside down",
        "Upside down the overlay's window stays as the display is, and the strip with it.", bootUnlocked,
        showTurned<2> },
    { "overlay-lock-screen", "Two strips",
        "Both strips at once: the lock screen's, and the overlay above it.",
        [](BootOptions& options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
        },
        [](Phone& device) { device.activate(kOverlayGesture); } },
    { "strip-hidden", "Put away",
        "The other gesture puts the lock screen's strip away, until it is made again.",
        [](BootOptions& options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
        },
        [](Phone& device) { device.activate(kLockScreenGesture); } },
};

}

std::span<Scene const> overlayScenes() { return kOverlayScenes; }

}
