// One contact in its slot: what the cell is made of, and what it does over time.
#include "tests/plugin/strip/strip_fixture.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_label.hpp"

namespace phone {

namespace {

// A picture file of one colour.
Json photo(int width, int height)
{
    graphics::Bitmap const bitmap = graphics::Bitmap::withPixels(width, height);
    for (int y = 0; y < height; ++y)
        std::fill_n(bitmap.pixels() + y * bitmap.stride(), width * 4, std::uint8_t { 255 });
    bitmap.markDirty();
    auto const png = graphics::encodePng(bitmap);
    return { { "data", base64(png.data(), png.size()) } };
}

Json noImage() { return { { "data", base64("no image", 8) } }; }

Json birthday(std::string const& date) { return { { "date", date + "T12:00:00Z" } }; }

}

class ContactCell : public StripTest {
protected:
    static void bootWith(Json contacts, Json settings = Json::object(), std::string const& version = "15.4")
    {
        BootOptions booted = options(version, std::move(settings));
        booted.contacts = std::move(contacts);
        boot(booted);
        phone().advance(0.1);
    }

    static UIView cell(std::size_t index = 0)
    {
        std::vector<UIView> const shown = cells(phone().strip());
        return index < shown.size() ? shown[index] : UIView {};
    }
    static UIView part(char const* className, std::size_t index = 0)
    {
        std::vector<UIView> const found = cell(index).children();
        for (UIView const each : found)
            if (CorvelTest::className(each) == className)
                return each;
        return {};
    }
    static UIButton button(std::size_t index = 0) { return UIButton { part("CVLButton", index).object }; }
    static UIView badge(std::size_t index = 0) { return part("UIImageView", index); }
    static std::string initial(std::size_t index = 0) { return toString(button(index).currentTitle()); }
    static std::string name(std::size_t index = 0)
    {
        return toString(UILabel { part("UILabel", index).object }.text());
    }
    static Json kinds(std::size_t index = 0)
    {
        Json names = Json::array();
        for (UIView const each : cell(index).children())
            names.push_back(CorvelTest::className(each));
        return names;
    }
};

TEST_F(ContactCell, HoldsButtonBadgeAndName)
{
    bootWith(contactEntries(1), { { "contactLabelColor", "#336699" } });

    EXPECT_EQ(kinds(), Json({ "UIView", "CVLButton", "UIImageView", "UILabel" }));
    Json const button = tree(part("CVLButton"));
    expectTree(button,
        { { "frame", rect(14.5, 0, 45, 45) }, { "cornerRadius", 22.5 }, { "clipsToBounds", true },
            { "backgroundColor", color(0.5, 0.5, 0.5, 1) }, { "titles", { { "0", "A" } } },
            { "images", Json::object() }, { "buttonType", 0 },
            { "targets",
                { { { "target", { { "class", "CVLView" } } }, { "action", "animateButton:" },
                      { "events", 1 } },
                    { { "target", { { "class", "CVLView" } } }, { "action", "buttonPressedAction:" },
                        { "events", 64 } } } },
            { "gestureRecognizers",
                { { { "class", "UILongPressGestureRecognizer" }, { "minimumPressDuration", 0.3 },
                    { "targets",
                        { { { "target", { { "class", "CVLView" } } },
                            { "action", "showMenu:" } } } } } } } });
    EXPECT_EQ(button["images"].size(), 0u);
    Json const label = tree(part("UILabel"));
    expectTree(label,
        { { "text", "Anna" }, { "textColor", color(0x33 / 255.0f, 0x66 / 255.0f, 0x99 / 255.0f, 1) },
            { "numberOfLines", 1 }, { "adjustsFontSizeToFitWidth", true }, { "minimumScaleFactor", 0.5 },
            { "textAlignment", 1 }, { "font", { { "name", ".SFUI-Regular" }, { "size", 9.5 } } },
            { "translatesAutoresizingMaskIntoConstraints", false },
            { "constraints",
                { "UILabel.top == CVLButton.bottom + 0", "UILabel.centerX == CVLButton.centerX + 0",
                    "UILabel.width <= 60", "UILabel.height == 15" } } });
    CGRect const frame = part("UILabel").frame();
    EXPECT_NEAR(frame.origin.y, 45, 1e-9);
    EXPECT_NEAR(frame.size.height, 15, 1e-9);
    EXPECT_NEAR(frame.origin.x + frame.size.width / 2, 37, 0.34);   // to the pixel
    EXPECT_LT(frame.size.width, 60);
}

TEST_F(ContactCell, IsNoWiderThanItsNameMayBe)
{
    Json entries = contactEntries(1);
    entries[0]["contactFirstName"] = "Maximilian-Alexander-Ferdinand";
    bootWith(entries);

    EXPECT_NEAR(part("UILabel").frame().size.width, 60, 1e-9);
}

TEST_F(ContactCell, CarriesWhatTheActionsNeed)
{
    Json entries = contactEntries(2);
    entries[0]["contactBirthday"] = birthday("1990-03-09");
    bootWith(entries);

    EXPECT_EQ(toString(button().send<"getPhoneNumber", NSString>()), "+44 20 7946-00");
    EXPECT_EQ(toString(button().send<"getContactName", NSString>()), "Anna");
    EXPECT_EQ(toString(button().send<"getEmailAddr", NSString>()), "contact0@example.com");
    EXPECT_TRUE((button().send<"getBirthday", objc::handle>()));
    EXPECT_FALSE((button(1).send<"getBirthday", objc::handle>()));   // the empty text
    EXPECT_EQ(toString(button(1).send<"getContactName", NSString>()), "Bora");
}

struct Naming {
    char const* first;
    char const* last;
    char const* initial;
    char const* name;
};

TEST_F(ContactCell, ShowsTheFirstCharacterOfTheNameThatItHas)
{
    Naming const rows[] { { "Anna", "Lind", "A", "Anna" }, { "", "Lind", "L", "Lind" }, { "", "", "NA", "" },
        { "שרה", "כהן", "ש", "שרה" }, { "👩‍🚀 Pia", "", "👩‍🚀", "👩‍🚀 Pia" } };
    Json entries = Json::array();
    for (Naming const& row : rows) {
        Json entry = contactEntries(1)[0];
        entry["contactFirstName"] = row.first;
        entry["contactLastName"] = row.last;
        entries.push_back(entry);
    }
    bootWith(entries);

    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(initial(i), rows[i].initial);
        EXPECT_EQ(name(i), rows[i].name);
        EXPECT_EQ(toString(button(i).send<"getContactName", NSString>()), rows[i].name);
    }
}

TEST_F(ContactCell, TakesMissingKeysAndOtherKindsAsAbsent)
{
    Json const wrong { { "contactFirstName", 7 }, { "contactLastName", Json::array({ "x" }) },
        { "contactImage", "text" }, { "contactBirthday", true }, { "contactPhoneNumber", 5 },
        { "contactEmail", noImage() } };
    Json const wrongFirst { { "contactFirstName", noImage() }, { "contactLastName", "Lind" },
        { "contactImage", 3 } };
    bootWith(Json::array({ Json::object(), wrong, wrongFirst }));

    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(initial(i), "NA");
        EXPECT_EQ(name(i), "");
        EXPECT_TRUE((button(i).send<"getPhoneNumber", objc::handle>()));
        EXPECT_EQ(toString(button(i).send<"getPhoneNumber", NSString>()), "");
        EXPECT_TRUE((button(i).send<"getEmailAddr", objc::handle>()));
        EXPECT_EQ(toString(button(i).send<"getEmailAddr", NSString>()), "");
        EXPECT_FALSE((button(i).send<"getBirthday", objc::handle>()));
        EXPECT_TRUE(badge(i).isHidden());
        expectTree(tree(button(i)), { { "backgroundColor", color(0.5, 0.5, 0.5, 1) } });
    }
    EXPECT_EQ(initial(2), "L");
    EXPECT_EQ(name(2), "Lind");
}

TEST_F(ContactCell, IsEmptyForAnEntryThatIsNone)
{
    Json entries = contactEntries(2);
    entries.insert(entries.begin() + 1, "no entry");
    bootWith(entries);

    ASSERT_EQ(cells(phone().strip()).size(), 3u);
    EXPECT_EQ(kinds(1), Json({ "UIView" }));
    EXPECT_EQ(name(2), "Bora");
    EXPECT_FALSE(phone().idleTimer().holds("CVL"));
}

TEST_F(ContactCell, ShowsARoundPhotoAtFiftyPoints)
{
    Json entries = contactEntries(3);
    entries[0]["contactImage"] = photo(100, 50);
    entries[1]["contactImage"] = noImage();
    entries[2]["contactImage"] = { { "data", "" } };
    bootWith(entries);

    Json const shown = tree(button());
    expectTree(shown,
        { { "backgroundColor", nullptr }, { "text", nullptr }, { "titles", Json::object() },
            { "cornerRadius", 22.5 },
            { "images", { { "0", { { "size", { 50, 50 } }, { "scale", 3 } } } } } });
    EXPECT_EQ(shown["titles"].size(), 0u);
    // No image: an empty circle.
    Json const empty = tree(button(1));
    expectTree(empty, { { "backgroundColor", nullptr }, { "text", nullptr }, { "cornerRadius", 22.5 } });
    EXPECT_FALSE(button(1).currentImage());
    // No bytes: as without a photo.
    EXPECT_EQ(initial(2), "C");
}

TEST_F(ContactCell, ShowsASquarePhotoAsItIs)
{
    Json entries = contactEntries(2);
    entries[0]["contactImage"] = photo(100, 50);
    bootWith(entries, { { "isRoundCell", false } });

    expectTree(tree(button()),
        { { "cornerRadius", 9 }, { "images", { { "0", { { "size", { 100, 50 } }, { "scale", 1 } } } } } });
    expectTree(tree(button(1)), { { "cornerRadius", 9 }, { "text", "B" } });
}

TEST_F(ContactCell, HasAnEmptyButtonInAStyleWithoutOne)
{
    bootWith(contactEntries(1), { { "bannerStyle", 0 } });

    expectTree(tree(button()), { { "frame", rect(0, 0, 0, 0) }, { "cornerRadius", 0 } });
}

TEST_F(ContactCell, CentresTheButtonInAWiderSlotWithBands)
{
    bootWith(contactEntries(2), { { "bannerStyle", 2 } });

    expectTree(tree(button()), { { "frame", rect((390.0 / 5 - 45) / 2, 0, 45, 45) } });
    expectTree(tree(badge()), { { "frame", rect((390.0 / 5 - 45) / 2 + 22, 22, 29, 23) } });
}

TEST_F(ContactCell, HasNoBadgeWithoutTheBirthdayFrame)
{
    Json entries = contactEntries(1);
    entries[0]["contactBirthday"] = birthday("1990-06-18");
    bootWith(entries, { { "birthdayFrame", false } });

    EXPECT_EQ(kinds(), Json({ "UIView", "CVLButton", "UILabel" }));
    EXPECT_TRUE(events("timer").empty());
}

TEST_F(ContactCell, ShowsTheCakeOnTheBirthdayAlone)
{
    Json entries = contactEntries(4);
    entries[0]["contactBirthday"] = birthday("1990-06-18");
    entries[1]["contactBirthday"] = birthday("1990-06-17");
    entries[2]["contactBirthday"] = birthday("1990-07-18");
    bootWith(entries);

    EXPECT_FALSE(badge(0).isHidden());
    EXPECT_TRUE(badge(1).isHidden());
    EXPECT_TRUE(badge(2).isHidden());
    EXPECT_TRUE(badge(3).isHidden());
    expectTree(tree(badge()),
        { { "frame", rect(36.5, 22, 29, 23) }, { "image", { { "size", { 29, 29 } }, { "scale", 3 } } } });
    button(0).send<"setCakeHidden:">(BOOL { true });
    EXPECT_TRUE(badge(0).isHidden());
}

TEST_F(ContactCell, StartsOneHourlyTimerAProcess)
{
    bootWith(contactEntries(8));
    makeStrip(lockScreenFrame(), record());

    std::vector<Json> const timers = events("timer");
    ASSERT_EQ(timers.size(), 1u);
    EXPECT_EQ(timers[0]["interval"], 3600.0);
    EXPECT_EQ(timers[0]["selector"], "presentBirthday:");
    EXPECT_EQ(timers[0]["repeats"], true);
    EXPECT_EQ(timers[0]["target"], "CVLView");
}

TEST_F(ContactCell, ChangesTheCakeWithinAnHourOfMidnight)
{
    Json entries = contactEntries(2);
    entries[0]["contactBirthday"] = birthday("1990-06-18");
    entries[1]["contactBirthday"] = birthday("1990-06-19");
    BootOptions booted = options("15.4");
    booted.contacts = entries;
    booted.date = "2026-06-18T23:30:00";
    boot(booted);
    phone().advance(0.1);
    ASSERT_FALSE(badge(0).isHidden());
    ASSERT_TRUE(badge(1).isHidden());

    phone().advance(1860);   // midnight has passed, the hour has not
    EXPECT_FALSE(badge(0).isHidden());
    phone().advance(1800);
    EXPECT_TRUE(badge(0).isHidden());
    EXPECT_FALSE(badge(1).isHidden());
}

TEST_F(ContactCell, HoldsTheIdleTimerWhileItIsMade)
{
    for (char const* version : { "15.4" }) {
        bootWith(contactEntries(3), Json::object(), version);
        std::vector<std::string> actions = told("assertion", "action");
        ASSERT_EQ(actions.size(), 6u);
        for (std::size_t i = 0; i < actions.size(); ++i)
            EXPECT_EQ(actions[i], i % 2 ? "remove" : "add");
        for (std::string const& reason : told("assertion", "reason"))
            EXPECT_EQ(reason, "CVL");
    }
}

// Cells come back from the queue with what they held, and leave with the new contact's content alone.
TEST_F(ContactCell, IsClearedWhenItIsUsedAgain)
{
    Json entries = contactEntries(40);
    bootWith(entries);
    UIView const row = collectionView(phone().strip());
    for (double const x : { 700.0, 1500.0, 74.0, 2400.0 }) {
        row.send<"setContentOffset:">(CGPoint { x, 0 });
        row.setNeedsLayout();
        layoutWindowsIfNeeded();
        phone().advance(0.1);
        auto const first = static_cast<std::size_t>(x / 74);
        std::vector<UIView> const shown = cells(phone().strip());
        ASSERT_GE(shown.size(), 5u);
        EXPECT_LE(shown.size(), 7u);
        for (UIView const each : shown) {
            ASSERT_EQ(each.children().size(), 4u);
            auto const item = static_cast<std::size_t>(each.frame().origin.x / 74 + 0.5);
            EXPECT_GE(item + 1, first);
            UIView const made = viewsOfClass(each, "CVLButton").at(0);
            EXPECT_EQ(toString(made.send<"getPhoneNumber", NSString>()),
                entries[item]["contactPhoneNumber"].get<std::string>());
        }
    }
}

TEST_F(ContactCell, LeavesOtherSubviewsInACellThatIsUsedAgain)
{
    bootWith(contactEntries(1));
    UIView const stranger = objc::leak(make<UIView>());
    cell().addSubview(stranger);
    collectionView(phone().strip()).send<"reloadData">();
    layoutWindowsIfNeeded();

    EXPECT_EQ(kinds(), Json({ "UIView", "UIView", "CVLButton", "UIImageView", "UILabel" }));
    EXPECT_TRUE(stranger.superview() == cell());
}

TEST_F(ContactCell, LetsGoOfAnEarlierButtonsBirthday)
{
    Json entries = contactEntries(1);
    entries[0]["contactBirthday"] = birthday("1990-06-18");
    bootWith(entries);
    UIButton const earlier = objc::leak(objc::retain(button()));
    UIView const earlierBadge = objc::leak(objc::retain(badge()));
    collectionView(phone().strip()).send<"reloadData">();
    layoutWindowsIfNeeded();
    ASSERT_FALSE(button() == earlier);

    // The hourly look is for the buttons that are shown.
    earlierBadge.setHidden(true);
    badge().setHidden(true);
    phone().strip().send<"presentBirthday:">(objc::handle {});
    EXPECT_TRUE(earlierBadge.isHidden());
    EXPECT_FALSE(badge().isHidden());
}

TEST_F(ContactCell, AnswersForTheFirstSectionAlone)
{
    bootWith(contactEntries(3));
    UIView const row = collectionView(phone().strip());
    auto const count = [&](NSInteger section) {
        return phone().strip().send<"collectionView:numberOfItemsInSection:", NSInteger>(row, section);
    };
    EXPECT_EQ(count(0), 3);
    EXPECT_EQ(count(1), 0);
    EXPECT_EQ(count(-1), 0);
}

TEST_F(ContactCell, FadesAndComesBackAtATouch)
{
    bootWith(contactEntries(1));
    UIButton const touched = button();
    touched.send<"fadeOutAnimationButton">();

    EXPECT_DOUBLE_EQ(touched.alpha(), 0.1);
    phone().advance(0.1);
    double const halfway = touched.presentation().alpha;
    EXPECT_LT(halfway, 0.5);   // easing out: past the middle
    EXPECT_GT(halfway, 0.1);
    phone().advance(0.125);
    EXPECT_DOUBLE_EQ(touched.alpha(), 1.0);   // on its way back
    phone().advance(0.8);
    EXPECT_DOUBLE_EQ(touched.presentation().alpha, 1.0);

    std::vector<Json> const animations = events("animate");
    ASSERT_EQ(animations.size(), 2u);
    EXPECT_EQ(animations[0]["duration"], 0.2);
    EXPECT_EQ(animations[0]["delay"], 0.0);
    EXPECT_EQ(animations[0]["options"], 131072);
    EXPECT_EQ(animations[0]["completion"], true);
    EXPECT_EQ(animations[1]["duration"], 0.7);
    EXPECT_EQ(animations[1]["options"], 131072);
    EXPECT_EQ(animations[1]["transition"], true);
    EXPECT_NEAR(animations[1]["t"].get<double>() - animations[0]["t"].get<double>(), 0.2, 0.02);
}

TEST_F(ContactCell, DeclaresItsPropertiesForReadersByKey)
{
    bootWith(contactEntries(1));
    for (char const* key : { "contactPhoneNumber", "contactImage", "contactFirstName", "contactLastName" })
        EXPECT_FALSE((cell().send<"valueForKey:", objc::handle>(toNSString(key)))) << key;
    EXPECT_TRUE(class_getInstanceVariable(objc_getClass("CVLContactCell"), "_styleConstraints"));
    for (char const* name :
        { "phoneNumber", "contactNameForDisplay", "emailAddr", "birthday", "buttonCakeView" })
        EXPECT_TRUE(class_getInstanceVariable(objc_getClass("CVLButton"), name)) << name;
}

}
