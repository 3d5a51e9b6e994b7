// Strips as they stand on the screen, as text and as pictures.
#include "tests/plugin/strip/strip_fixture.hpp"
#include "tests/support/golden.hpp"

#include "phone/screen/renderer.hpp"

namespace phone {

struct Scene {
    char const* name;
    char const* version;
    Json settings;
    bool isRightToLeft;
    bool isEmpty;
    bool isOverlay;
    Appearance appearance;
};

class StripGolden : public StripTest, public testing::WithParamInterface<Scene> {
protected:
    static constexpr double kMargin = 12;   // points around the strip, for what lies behind it

    // The starter set's contacts, or none.
    static void bootScene()
    {
        Scene const& scene = GetParam();
        BootOptions booted = options(scene.version, scene.settings);
        if (scene.isEmpty)
            booted.contacts = Json::array();
        else
            booted.contacts.reset();
        booted.direction = scene.isRightToLeft ? LayoutDirection::rightToLeft : LayoutDirection::leftToRight;
        booted.appearance = scene.appearance;
        booted.scale = 2;
        boot(booted);
        if (scene.isOverlay)
            phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        phone().advance(1);
    }
    static UIView strip() { return GetParam().isOverlay ? phone().overlay() : phone().strip(); }
};

TEST_P(StripGolden, LooksAsItDid)
{
    bootScene();
    ASSERT_TRUE(strip());
    std::string const name = std::string("strip/") + GetParam().name;
    expectGoldenText(name, treeText(strip()));

    Renderer renderer;
    graphics::Bitmap const screen = renderer.drawScreen(2);
    CGRect const place = strip().convertRectToView(strip().bounds(), {});
    expectGoldenPicture(name,
        graphics::cropped(screen,
            { (place.origin.x - kMargin) * 2, (place.origin.y - kMargin) * 2,
                (place.size.width + 2 * kMargin) * 2, (place.size.height + 2 * kMargin) * 2 }));
}

INSTANTIATE_TEST_SUITE_P(Scenes, StripGolden,
    testing::Values(Scene { "dark", "16.1", Json::object(), false, false, false, Appearance::dark },
        Scene { "light", "12.4", Json::object(), false, false, false, Appearance::light },
        Scene { "right_to_left", "15.4", { { "mainViewColor", "#ff8800" }, { "titlePos", 3 } }, true, false,
            false, Appearance::light },
        Scene { "bands", "14.8",
            { { "bannerStyle", 2 }, { "isRoundCell", false }, { "contactLabelColor", "#ffffff" },
                { "titleColor", "#ffffff" } },
            false, false, false, Appearance::light },
        Scene { "welcome", "15.4", Json::object(), false, true, false, Appearance::light },
        Scene { "overlay", "13.7", { { "darkMode", false } }, false, false, true, Appearance::light }),
    [](auto const& info) { return std::string(info.param.name); });

}
