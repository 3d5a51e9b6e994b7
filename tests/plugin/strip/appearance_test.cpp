// Title, background, colours and the welcome of an empty strip.
#include "tests/plugin/strip/strip_fixture.hpp"

#include "phone/foundation/strings.hpp"

namespace phone {

namespace {

Json childOf(Json const& tree, std::string const& className)
{
    for (Json const& child : tree["children"])
        if (child["class"] == className)
            return child;
    return nullptr;
}

}

class StripAppearance : public StripTest {
protected:
    // A strip of its own on a phone whose lock screen has made none.
    static void bootBare(std::size_t contacts = 3, std::optional<double> number = {})
    {
        BootOptions booted = options("13.7", { { "isEnabled", false } }, contacts);
        booted.coreFoundation = number;
        boot(booted);
    }
    static Json made(StripRecord const& settings, bool isOverlay = false)
    {
        return tree(makeStrip(lockScreenFrame(), settings, isOverlay));
    }
};

TEST_F(StripAppearance, AlignsTheTitleByItsPosition)
{
    bootBare();
    for (auto const& [position, alignment] : std::vector<std::pair<std::uint64_t, int>> {
             { 0, 1 }, { 1, 0 }, { 2, 1 }, { 3, 2 }, { 4, 1 }, { 7, 1 }, { 0xFFFFFFFFFFFFFFFFu, 1 } }) {
        StripRecord settings = record();
        settings.titlePosition = position;
        EXPECT_EQ(childOf(made(settings), "UILabel")["textAlignment"], alignment) << position;
    }
}

TEST_F(StripAppearance, WritesTheTitleInItsFontAndColour)
{
    bootBare();
    StripRecord settings = record();
    settings.title = toNSString("Mine");
    settings.font = UIFont::fontWithName(toNSString("Georgia"), 10.5);
    ASSERT_TRUE(settings.font);
    settings.titleColor = UIColor::colorWithRed(1, 0.5, 0.25, 1);
    expectTree(childOf(made(settings), "UILabel"),
        { { "text", "Mine" }, { "textColor", color(1, 0.5, 0.25, 1) },
            { "font", { { "name", "Georgia" }, { "size", 10.5 } } }, { "numberOfLines", 1 } });

    settings.titleColor = {};
    expectTree(childOf(made(settings), "UILabel"), { { "textColor", color(0, 0, 0, 1) } });
}

TEST_F(StripAppearance, ShowsAnEmptyTitleOnlyWhereItHasNoCard)
{
    bootBare();
    StripRecord settings = record();
    settings.title = toNSString("");
    settings.style = 2;
    expectTree(childOf(made(settings), "UILabel"), { { "text", "" }, { "frame", rect(10, 8, 350, 12) } });
    settings.style = 0;
    expectTree(childOf(made(settings), "UILabel"), { { "text", "" }, { "frame", rect(10, 8, 350, 12) } });
    settings.style = 1;
    Json const card = made(settings);
    EXPECT_TRUE(childOf(card, "UILabel").is_null());
    expectTree(childOf(card, "UIVisualEffectView"), { { "frame", rect(78, 0, 222, 70) } });
    expectTree(childOf(card, "UICollectionView"), { { "frame", rect(78, 10, 222, 76.7) } });

    // The switch is off: no label in any style.
    settings.title = toNSString("Corvel");
    settings.hasTitle = false;
    for (std::uint64_t const style : { 0, 1, 2 }) {
        settings.style = style;
        EXPECT_TRUE(childOf(made(settings), "UILabel").is_null()) << style;
    }
}

TEST_F(StripAppearance, PlacesTheTitleByTheCardOfAnEarlierStrip)
{
    bootBare();
    made(record(), true);   // an overlay, 222 wide from 0
    StripRecord settings = record();
    settings.style = 2;
    expectTree(childOf(made(settings), "UILabel"), { { "frame", rect(3, 8, 217, 12) } });
    settings.style = 0;
    expectTree(childOf(made(settings), "UILabel"), { { "frame", rect(3, 8, 217, 12) } });
}

TEST_F(StripAppearance, GivesTheCardItsAlpha)
{
    bootBare();
    for (auto const& [set, shown] :
        { std::pair { -1.0f, 1.0 }, { 0.0f, 0.0 }, { 0.5f, 0.5 }, { 1.0f, 1.0 } }) {
        StripRecord settings = record();
        settings.alpha = set;
        expectTree(childOf(made(settings), "UIVisualEffectView"), { { "alpha", shown } });
        expectTree(childOf(made(settings, true), "UIVisualEffectView"), { { "alpha", shown } });
    }
}

TEST_F(StripAppearance, TintsTheCardFaintly)
{
    bootBare();
    StripRecord settings = record();
    settings.tint = UIColor::colorWithRed(1, 0.5, 0, 0.7);
    expectTree(
        childOf(made(settings), "UIVisualEffectView"), { { "backgroundColor", color(1, 0.5, 0, 0.1) } });
}

TEST_F(StripAppearance, BlursDarkOrLight)
{
    bootBare();
    for (bool const isOverlay : { false, true }) {
        StripRecord settings = record();
        EXPECT_EQ(childOf(made(settings, isOverlay), "UIVisualEffectView")["effectStyle"], 1);
        settings.isDark = true;
        EXPECT_EQ(childOf(made(settings, isOverlay), "UIVisualEffectView")["effectStyle"], 2);
    }
}

TEST_F(StripAppearance, TurnsPagesWhenItIsToldTo)
{
    bootBare();
    StripRecord settings = record();
    settings.isPaging = true;
    EXPECT_EQ(childOf(made(settings), "UICollectionView")["pagingEnabled"], true);
}

TEST_F(StripAppearance, WelcomesOnTheOldSide)
{
    bootBare(0, 1600.0);
    Json const shown = made(record());
    expectTree(childOf(shown, "UILabel"),
        { { "text", "Thank you for choosing Corvel\n\nConfigure appearence and contacts from settings" },
            { "numberOfLines", 5 }, { "textAlignment", 1 }, { "frame", rect(-6, 2.5, 390, 80) },
            { "font", { { "name", ".SFUI-Medium" }, { "size", 12 } } } });
    expectTree(childOf(shown, "UIButton"), { { "targets", Json::array() } });
    EXPECT_EQ(shown["children"].back()["class"], "UILabel");
}

TEST_F(StripAppearance, WelcomesOnTheNewSide)
{
    bootBare(0, 1600.1);
    Json const shown = made(record());
    expectTree(childOf(shown, "UILabel"),
        { { "text",
              "Thank you for choosing Corvel\n\nClick anywhere to add your first contacts!\n\nConfigure appearence "
              "and contacts from settings" },
            { "numberOfLines", 7 } });
    expectTree(childOf(shown, "UIButton"),
        { { "frame", rect(0, 80 / 3.95, 370, 75) },
            { "targets",
                { { { "target", { { "class", "CVLView" } } }, { "action", "addButton:" },
                    { "events", 64 } } } },
            { "images", { { "0", { { "size", { 320, 50 } }, { "scale", 3 } } } } } });
}

TEST_F(StripAppearance, StandsWithoutItsPictures)
{
    bootBare(0);
    for (char const* file : { "happybd.png", "contactsbar3.png" })
        ASSERT_TRUE(phone().root().remove(
            std::string("/var/jb/Library/PreferenceBundles/CorvelPREF.bundle/") + file));
    Json const welcome = made(record());
    ASSERT_FALSE(childOf(welcome, "UIButton").is_null());
    EXPECT_TRUE(childOf(welcome, "UIButton")["images"].empty()
        || childOf(welcome, "UIButton")["images"]["0"].is_null());

    writeContacts(contactEntries(1));
    UIView const strip = makeStrip(lockScreenFrame(), record());
    show(strip);
    ASSERT_EQ(cells(strip).size(), 1u);
    EXPECT_TRUE(tree(viewsOfClass(cells(strip)[0], "UIImageView").at(0))["image"].is_null());
}

TEST_F(StripAppearance, IsEmptyWithoutAListOrWithABrokenOne)
{
    bootBare(3);
    std::string const path = "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist";
    ASSERT_TRUE(phone().root().write(path, "broken", 6));
    EXPECT_FALSE(childOf(made(record()), "UIButton").is_null());
    ASSERT_TRUE(phone().root().remove(path));
    EXPECT_FALSE(childOf(made(record()), "UIButton").is_null());
}

TEST_F(StripAppearance, IsMadeFromASettingsRecordOfItsOwn)
{
    // What the settings say later does not reach it.
    boot(options("13.7", { { "styleCustomTitle", "First" } }, 3));
    ASSERT_TRUE(phone().changeSettings({ { "styleCustomTitle", "Second" }, { "bannerStyle", 2 } }, {}));
    collectionView(phone().strip()).send<"reloadData">();
    phone().advance(1);
    Json const shown = tree(phone().strip());
    expectTree(childOf(shown, "UILabel"), { { "text", "First" } });
    EXPECT_FALSE(childOf(shown, "UIVisualEffectView").is_null());
    expectTree(tree(cells(phone().strip())[0])["frame"]["rect"][2], 74);
}

}
