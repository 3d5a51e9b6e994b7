// Both strips alive: what they share is as the one that was made last has left it.
#include "phone/uikit/ui_color.hpp"
#include "tests/plugin/overlay/overlay_fixture.hpp"

namespace phone {

class TwoStrips : public OverlayTest {
protected:
    static double slot(UIView strip)
    {
        objc::handle const none;
        return strip
            .send<"collectionView:layout:sizeForItemAtIndexPath:", CGSize>(
                viewsOfClass(strip, "UICollectionView").at(0), none, none)
            .width;
    }
    // The record is filled when the list loads, and copied when a strip is made.
    static void changeRecord(PropertyListDictionary const& settings)
    {
        ASSERT_TRUE(phone().changeSettings(settings, {}));
        phone().adjunctController().send<"viewDidLoad">();
    }
    // Of the first contact.
    static UIView badge(UIView strip)
    {
        for (UIView const picture : viewsOfClass(contactButton(strip).superview(), "UIImageView"))
            if (picture.frame().size == CGSize { 29, 23 })
                return picture;
        return {};
    }
    static UIView card(UIView strip) { return viewsOfClass(strip, "UIVisualEffectView").at(0); }
};

TEST_F(TwoStrips, AreTwo)
{
    boot(options("15.4"));
    UIView const strip = phone().strip();
    CGRect const before = onScreen(strip);
    summon();

    ASSERT_TRUE(phone().overlay());
    EXPECT_FALSE(phone().overlay() == strip);
    EXPECT_EQ(phone().strip(), strip);
    EXPECT_EQ(onScreen(strip), before);
    EXPECT_EQ(viewsOfClass(strip, "CVLContactCell").size(), 3u);
    EXPECT_EQ(viewsOfClass(phone().overlay(), "CVLContactCell").size(), 3u);
}

TEST_F(TwoStrips, ShareTheStyleOfTheLastOneMade)
{
    boot(options("15.4", { { "bannerStyle", 1 } }));
    UIView const strip = phone().strip();
    EXPECT_NEAR(slot(strip), 74, 1e-9);
    changeRecord({ { "bannerStyle", 2 } });
    EXPECT_NEAR(slot(strip), 74, 1e-9);

    summon();

    EXPECT_NEAR(slot(strip), 78, 1e-9);
    EXPECT_NEAR(slot(phone().overlay()), 74, 1e-9);
    strip.send<"viewDidLayoutSubviews">();
    layoutWindowsIfNeeded();
    EXPECT_NEAR(viewsOfClass(strip, "CVLContactCell").at(0).frame().size.width, 78, 1e-9);
}

TEST_F(TwoStrips, KeepTheirOwnCards)
{
    boot(options("15.4",
        { { "viewAlpha", 0.5 }, { "viewAlphaLS", 0.25 }, { "mainViewColor", "#ff0000" },
            { "mainViewColorNonLS", "#0000ff" } }));
    UIView const lockScreenCard = card(phone().strip());
    summon();

    EXPECT_EQ(lockScreenCard.alpha(), 0.5);
    EXPECT_EQ(lockScreenCard.backgroundColor().rgba(), (graphics::Color { 1, 0, 0, 0.1 }));
    EXPECT_EQ(card(phone().overlay()).alpha(), 0.25);
    EXPECT_EQ(card(phone().overlay()).backgroundColor().rgba(), (graphics::Color { 0, 0, 1, 0.1 }));
}

TEST_F(TwoStrips, TellOfBirthdaysOnTheButtonsOfTheLastOneMade)
{
    BootOptions system = options("15.4");
    Json contacts = contactEntries(2);
    contacts[0]["contactBirthday"] = Json::object({ { "date", "1990-06-18T12:00:00Z" } });
    system.contacts = contacts;
    system.date = "2026-06-17T23:30:00";
    boot(system);
    layoutWindowsIfNeeded();
    summon();
    UIView const strip = phone().strip();
    UIView const overlay = phone().overlay();
    ASSERT_TRUE(badge(strip));
    ASSERT_TRUE(badge(overlay));
    EXPECT_TRUE(badge(strip).isHidden());
    EXPECT_TRUE(badge(overlay).isHidden());

    wait(3600);

    EXPECT_TRUE(badge(strip).isHidden());
    EXPECT_FALSE(badge(overlay).isHidden());
}

TEST_F(TwoStrips, AnswerForThemselvesWhenTouched)
{
    boot(options("15.4", { { "askBeforeCall", false }, { "singleTapAction", 0 } }));
    summon();
    phone().tap(middleOnScreen(contactButton(phone().strip(), 1)));
    wait(1);
    EXPECT_EQ(told("openURL", "url"), Lines { "tel:+44207946-01" });
    // The lock screen's strip goes nowhere, nor does it take the other one with it.
    EXPECT_TRUE(phone().strip());
    EXPECT_TRUE(isOverlayOnScreen());

    phone().tap(middleOnScreen(contactButton(phone().overlay(), 2)));
    wait(1);
    EXPECT_EQ(told("openURL", "url").back(), "tel:+44207946-02");
    EXPECT_FALSE(isOverlayOnScreen());
    EXPECT_TRUE(phone().strip());
}

TEST_F(TwoStrips, AreSwitchedByGesturesOfTheirOwn)
{
    boot(options("15.4"));
    summon();
    UIView const strip = phone().strip();
    gesture(kLockScreenGesture);
    wait(0.5);
    EXPECT_FALSE(strip.superview());
    EXPECT_TRUE(isOverlayOnScreen());
    gesture();
    wait(0.5);
    gesture(kLockScreenGesture);
    wait(0.5);
    EXPECT_TRUE(strip.superview());
    EXPECT_FALSE(isOverlayOnScreen());
}

}
