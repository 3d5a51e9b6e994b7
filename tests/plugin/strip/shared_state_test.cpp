// What one strip leaves to the next: width, record, badge and buttons are the process's, as the strip made last has set them.
#include "tests/plugin/strip/strip_fixture.hpp"

namespace phone {

class SharedState : public StripTest {
protected:
    static void bootBare(Json const& contacts)
    {
        BootOptions booted = options("15.4", { { "isEnabled", false } });
        booted.contacts = contacts;
        boot(booted);
    }
    // One contact, whose birthday is on the day of the boot.
    static Json celebrating()
    {
        Json entries = contactEntries(1);
        entries[0]["contactBirthday"] = Json::object({ { "date", "1990-06-18T12:00:00Z" } });
        return entries;
    }
    static UIView shown(StripRecord const& settings)
    {
        UIView const strip = makeStrip(lockScreenFrame(), settings);
        show(strip);
        return strip;
    }
    static void remakeCells(UIView strip)
    {
        collectionView(strip).send<"reloadData">();
        layoutWindowsIfNeeded();
    }
    static UIView badge(UIView strip)
    {
        for (UIView const part : cells(strip).at(0).children())
            if (className(part) == "UIImageView")
                return part;
        return {};
    }
    // The files that are read while a strip is made, by name.
    static std::vector<std::string> filesOf(StripRecord const& settings)
    {
        std::size_t const since = phone().trace().count();
        makeStrip(lockScreenFrame(), settings);
        std::vector<std::string> names;
        for (Json const& event : events("read", since)) {
            std::string const path = event["path"];
            if (event["found"] == true)
                names.push_back(path.substr(path.rfind('/') + 1));
        }
        return names;
    }
};

TEST_F(SharedState, TakesTheScreensWidthAsItIsUpright)
{
    bootBare(contactEntries(3));
    StripRecord settings = record();
    settings.style = 0;   // nothing but the width in the two numbers
    for (int const orientation : { 1, 2, 3, 4, 1 }) {
        ASSERT_TRUE(phone().setOrientation(orientation));
        UIView const strip = makeStrip({ { 0, 0 }, { 300, 80 } }, settings);
        EXPECT_EQ((strip.send<"bannerDynamicWidth", std::int32_t>()), 370) << orientation;
        EXPECT_EQ((strip.send<"bannerDynamicSize", std::int32_t>()), 10) << orientation;
    }
}

TEST_F(SharedState, MakesCellsOfAnEarlierStripByTheLaterRecord)
{
    bootBare(celebrating());
    UIView const strip = shown(record());
    expectTree(tree(buttons(strip).at(0)), { { "frame", rect(14.5, 0, 45, 45) }, { "cornerRadius", 22.5 } });
    ASSERT_TRUE(badge(strip));

    StripRecord settings = record();
    settings.style = 2;
    settings.isRound = false;
    settings.hasBirthdayFrame = false;
    settings.nameColor = UIColor::colorWithRed(1, 0, 0, 1);
    makeStrip(lockScreenFrame(), settings);
    remakeCells(strip);

    expectTree(tree(buttons(strip).at(0)), { { "frame", rect(16.5, 0, 45, 45) }, { "cornerRadius", 9 } });
    EXPECT_FALSE(badge(strip));
    expectTree(tree(cells(strip).at(0).children().back()),
        { { "class", "UILabel" }, { "textColor", color(1, 0, 0, 1) } });
}

TEST_F(SharedState, ForgetsAnEarlierStripsButtonsOnlyForBirthdaysOfItsOwn)
{
    bootBare(celebrating());
    UIView const strip = shown(record());
    UIView const cake = badge(strip);
    ASSERT_TRUE(cake);
    ASSERT_FALSE(cake.isHidden());

    // A strip without birthdays leaves them alone.
    StripRecord settings = record();
    settings.hasBirthdayFrame = false;
    makeStrip(lockScreenFrame(), settings);
    cake.setHidden(true);
    strip.send<"presentBirthday:">(objc::handle {});
    EXPECT_FALSE(cake.isHidden());

    makeStrip(lockScreenFrame(), record());
    cake.setHidden(true);
    strip.send<"presentBirthday:">(objc::handle {});
    EXPECT_TRUE(cake.isHidden());
}

TEST_F(SharedState, ReadsOnlyTheFilesThatItNeeds)
{
    using Names = std::vector<std::string>;
    bootBare(contactEntries(2));
    StripRecord plain = record();
    plain.hasBirthdayFrame = false;
    EXPECT_EQ(filesOf(record()), (Names { "com.orvane.corvellist.plist", "happybd.png" }));
    EXPECT_EQ(filesOf(plain), (Names { "com.orvane.corvellist.plist" }));

    writeContacts(Json::array());
    EXPECT_EQ(
        filesOf(record()), (Names { "com.orvane.corvellist.plist", "happybd.png", "contactsbar3.png" }));
    EXPECT_EQ(filesOf(plain), (Names { "com.orvane.corvellist.plist", "contactsbar3.png" }));
}

}
