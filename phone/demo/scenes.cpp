#include "phone/demo/scene.hpp"

namespace phone {

namespace {

using Options = BootOptions&;

void useSize(Options options, double width, double height)
{
    options.width = width;
    options.height = height;
}

// From iOS 13 on the strip is dark unless it is told otherwise, also where the system's appearance is light.
Json lightStrip() { return Json::object({ { "darkMode", false } }); }

constexpr Scene kLockScreenScenes[] {
    { "ios16-dark", "iOS 16.1, dark",
        "The lock screen of iOS 16 in the dark appearance: the strip lies under the notifications, as their "
        "last item.",
        [](Options options) {
            options.ios = { 16, 1 };
            options.appearance = Appearance::dark;
        } },
    { "ios12-light", "iOS 12.4, light",
        "The lock screen of iOS 12 in the light appearance, with its clock over the date and headed "
        "notifications.",
        [](Options options) {
            options.ios = { 12, 4 };
            options.appearance = Appearance::light;
        } },
    { "music", "Music plays",
        "Music plays, so that SpringBoard puts its card into the same stack: the strip keeps its place after it.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.settings = lightStrip();
        },
        [](Phone& device) { device.setMusicPlaying(true); } },
    { "style-1", "Style 1", "Style 1, the usual one: a blurred card with round corners.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
            options.settings = Json::object({ { "bannerStyle", 1 } });
        } },
    { "style-2", "Style 2", "Style 2: two dark bands from one side of the screen to the other.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
            options.settings = Json::object({ { "bannerStyle", 2 } });
        } },
    { "style-0", "Style 0", "Style 0: no background, and the buttons have no size; the names remain.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
            options.settings = Json::object({ { "bannerStyle", 0 } });
        } },
    { "title-left", "Title at the left", "A title of one's own at the left, in a colour of one's own.",
        [](Options options) {
            options.ios = { 14, 8 };
            options.appearance = Appearance::dark;
            options.settings = Json::object(
                { { "titlePos", 1 }, { "styleCustomTitle", "Favourites" }, { "titleColor", "#FFD60A" } });
        } },
    { "title-center", "Title in the middle", "The title in the middle, where it usually is.",
        [](Options options) {
            options.ios = { 14, 8 };
            options.appearance = Appearance::dark;
            options.settings = Json::object({ { "titlePos", 2 }, { "styleCustomTitle", "Favourites" } });
        } },
    { "title-right", "Title at the right", "The title at the right; contacts in square cells.",
        [](Options options) {
            options.ios = { 14, 8 };
            options.appearance = Appearance::dark;
            options.settings = Json::object(
                { { "titlePos", 3 }, { "styleCustomTitle", "Favourites" }, { "isRoundCell", false } });
        } },
    { "birthday", "A birthday",
        "It is the eighteenth of June, the day on which Zoë was born: her photo wears a cake.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
            options.date = "2026-06-18T08:05:00";
        } },
    { "hebrew", "Hebrew, right to left",
        "A phone in Hebrew: the lock screen is mirrored, and the strip begins at the right.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.settings = lightStrip();
            options.language = "he";
        } },
    { "scrolled", "Further along",
        "The strip after a drag of the finger: initials where there is no photo, a last name where there is no "
        "first.",
        [](Options options) {
            options.ios = { 16, 1 };
            options.appearance = Appearance::dark;
        },
        [](Phone& device) {
            UIView const strip = device.strip();
            CGRect const box = strip.convertRectToView(strip.bounds(), {});
            double const y = midY(box);
            for (int i = 0; i < 3; ++i) {
                device.drag({ maxX(box) - 30, y }, { minX(box) + 30, y }, 0.25);
                device.advance(1.5);
            }
        } },
    { "welcome-12.4", "No contacts, iOS 12.4",
        "An empty list on a system up to 12: the welcome text says where contacts are added.",
        [](Options options) {
            options.ios = { 12, 4 };
            options.contacts = Json::array();
        } },
    { "welcome-15.4", "No contacts, iOS 15.4",
        "An empty list on a later system: a button that adds contacts at once.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
            options.contacts = Json::array();
        } },
    { "size-375x812", "375 x 812, iOS 13.7", "A narrower screen: five slots share the width, whatever it is.",
        [](Options options) {
            options.ios = { 13, 7 };
            options.appearance = Appearance::dark;
            useSize(options, 375, 812);
        } },
    { "size-390x844", "390 x 844, iOS 14.8", "The screen that the other pictures have, in Turkish.",
        [](Options options) {
            options.ios = { 14, 8 };
            options.settings = lightStrip();
            options.language = "tr";
            useSize(options, 390, 844);
        } },
    { "size-430x932", "430 x 932, iOS 16.1", "The largest screen.",
        [](Options options) {
            options.ios = { 16, 1 };
            options.settings = lightStrip();
            useSize(options, 430, 932);
        } },
    { "landscape", "On its side",
        "The phone on its side: the screen's bounds have swapped, and the strip was laid out for the turn.",
        [](Options options) {
            options.ios = { 15, 4 };
            options.appearance = Appearance::dark;
        },
        [](Phone& device) { device.setOrientation(3); } },
};

}

std::span<Scene const> lockScreenScenes() { return kLockScreenScenes; }

std::vector<Scene> demoScenes()
{
    std::vector<Scene> all;
    for (auto const scenes : { lockScreenScenes(), touchScenes(), pickerScenes(), overlayScenes() })
        all.insert(all.end(), scenes.begin(), scenes.end());
    return all;
}

}
