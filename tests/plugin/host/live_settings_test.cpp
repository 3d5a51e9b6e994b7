// What a change of the settings reaches on a running phone: some things at once, the rest in a strip that is made later.
#include "phone/springboard/view_tree.hpp"
#include "phone/uikit/geometry.hpp"
#include "tests/support/phone_fixture.hpp"

namespace phone {

class LiveSettings : public CorvelTest {
protected:
    using Lines = std::vector<std::string>;

    static void change(PropertyListDictionary const& set, std::vector<std::string> const& removed = Lines {})
    {
        ASSERT_TRUE(phone().changeSettings(set, removed));
    }
    // A finger on the one contact; what fades is back afterwards.
    static void tapContact()
    {
        auto const buttons = viewsOfClass(phone().strip(), "CVLButton");
        ASSERT_EQ(buttons.size(), 1u);
        phone().tap(buttons[0].convertPointToView(center(buttons[0].bounds()), {}));
        phone().advance(2);
    }
    static Lines soundsOfATap()
    {
        std::size_t const before = phone().trace().count();
        tapContact();
        return told("sound", "id", before);
    }
    // As it is drawn, with every cell built anew.
    static Json freshTree()
    {
        viewsOfClass(phone().strip(), "UICollectionView").at(0).send<"reloadData">();
        phone().advance(1);
        layoutWindowsIfNeeded();
        return viewTree(phone().strip(), { .detail = true, .handles = false });
    }
};

TEST_F(LiveSettings, TheMotorFollowsItsSwitchAtOnce)
{
    // A code of no action: the tap is felt, and nothing else comes of it.
    boot(options("15.4", { { "singleTapAction", 9 } }, 1));
    phone().advance(1);

    EXPECT_EQ(soundsOfATap(), Lines { "1519" });
    change({ { "isHapticFB", false } });
    EXPECT_EQ(soundsOfATap(), Lines {});
    change({ { "isHapticFB", true } });
    EXPECT_EQ(soundsOfATap(), Lines { "1519" });
    change({ { "isHapticFB", false } });
    change({}, { "isHapticFB" });
    EXPECT_EQ(soundsOfATap(), Lines { "1519" });
}

TEST_F(LiveSettings, AStripLooksAsItWasMade)
{
    BootOptions system = options("15.4", Json::object(), 3);
    (*system.contacts)[0]["contactBirthday"] =
        Json::object({ { "date", "1990-06-18T12:00:00Z" } });   // today
    boot(system);
    phone().advance(1);
    Json const before = freshTree();

    change({ { "styleCustomTitle", "Other" }, { "styleFont", "Georgia-Bold" }, { "viewAlpha", 0.3 },
        { "titleColor", "#ff0000" }, { "contactLabelColor", "#00ff00" }, { "mainViewColor", "#0000ff" },
        { "titlePos", 3 }, { "bannerStyle", 2 }, { "isRoundCell", false }, { "isPaging", true },
        { "darkMode", false }, { "showBirthday", false }, { "birthdayFrame", false },
        { "isDynamicSize", false }, { "enableTitle", false } });
    phone().setMusicPlaying(true);
    phone().setMusicPlaying(false);
    EXPECT_EQ(freshTree(), before);

    // Not even when the record is filled anew.
    phone().adjunctController().send<"initFirstPreferences">();
    EXPECT_EQ(freshTree(), before);
}

TEST_F(LiveSettings, ATapDoesWhatItDidWhenTheStripWasMade)
{
    boot(options("15.4", { { "askBeforeCall", false } }, 1));
    phone().advance(1);
    change({ { "askBeforeCall", true }, { "singleTapAction", 9 }, { "validateUnlockBeforeCall", true } });
    std::size_t const before = phone().trace().count();

    tapContact();

    Lines const urls = told("openURL", "url", before);
    ASSERT_EQ(urls.size(), 1u);
    EXPECT_TRUE(urls[0].starts_with("tel:")) << urls[0];
    EXPECT_TRUE(events("unlockRequest", before).empty());
}

TEST_F(LiveSettings, AStripMadeLateTakesTheTitleThatItsRecordLends)
{
    // The title was gone by then, and the strip read what came to lie in its place.
    boot(options("15.4", { { "styleCustomTitle", "The first of three long titles" } }));
    change({ { "styleCustomTitle", "The second of three long titles" }, { "styleFont", "Georgia" } });
    phone().adjunctController().send<"viewDidLoad">();   // fills the record
    change({ { "styleCustomTitle", "The third of three long titles" }, { "styleFont", "Menlo" } });

    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
    phone().advance(1);

    ASSERT_TRUE(phone().overlay());
    EXPECT_EQ(viewsOfClass(phone().overlay(), "CVLContactCell").size(), 3u);
}

}
