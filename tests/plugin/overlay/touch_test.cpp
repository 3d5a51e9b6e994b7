// Touches on the overlay strip and beside it, in every orientation; the swipe that puts it away; and what lies over what.
#include "phone/uikit/geometry.hpp"
#include "tests/plugin/overlay/overlay_fixture.hpp"

#include <cmath>

namespace phone {

class OverlayTouch : public OverlayTest {
protected:
    static BootOptions callingOptions()
    {
        return options("15.4", { { "askBeforeCall", false }, { "singleTapAction", 0 } });
    }
    static void swipeFrom(CGPoint from, CGPoint by, double seconds)
    {
        phone().drag(from, from + by, seconds);
        wait(0.5);
    }
    // From beside the first contact.
    static void swipe(CGPoint by, double seconds)
    {
        CGRect const place = onScreen(phone().overlay());
        swipeFrom({ place.origin.x + 5, midY(place) }, by, seconds);
    }
};

class OverlayTouchIn : public OverlayTouch, public testing::WithParamInterface<int> { };

TEST_P(OverlayTouchIn, StandsUprightBeforeTheUser)
{
    bootWithApplication(callingOptions());
    turn(GetParam());
    summon();
    UIView const strip = phone().overlay();
    CGRect const place = onScreen(strip);

    // In the middle of the upper edge, as upright as what is in front, and turned with the phone it stays so.
    auto const expectInPlace = [&](CGRect box, int orientation) {
        double const across = orientation >= 3 ? 844 : 390;
        EXPECT_NEAR(midX(box), across / 2, 1e-9) << orientation;
        EXPECT_NEAR(box.origin.y, orientation >= 3 ? 10 : 40, 1e-9) << orientation;
        EXPECT_NEAR(box.size.width, 222, 1e-9) << orientation;
        EXPECT_NEAR(box.size.height, 88, 1e-9) << orientation;
        CGPoint const right = apply(
            overlayWindow().transformToSuperview(), strip.convertPointToView({ 100, 0 }, overlayWindow()));
        CGPoint const left = apply(
            overlayWindow().transformToSuperview(), strip.convertPointToView({ 0, 0 }, overlayWindow()));
        EXPECT_NEAR(right.x - left.x, 100, 1e-9) << orientation;
        EXPECT_NEAR(right.y - left.y, 0, 1e-9) << orientation;
    };
    expectInPlace(place, GetParam());
    for (int const orientation : { 1, 3, 4 }) {
        turn(orientation);
        wait(0.5);
        expectInPlace(onScreen(strip), orientation);
    }
}

TEST_P(OverlayTouchIn, TakesItsOwnTouchesAndNoOthers)
{
    bootWithApplication(callingOptions());
    turn(GetParam());
    summon();
    UIView const strip = phone().overlay();
    CGRect const place = onScreen(strip);
    for (CGPoint const beside : { CGPoint { midX(place), place.origin.y + place.size.height + 30 },
             CGPoint { place.origin.x - 10, midY(place) },
             CGPoint { place.origin.x + place.size.width + 10, midY(place) } }) {
        int const before = touchesInApplication();
        phone().tap(beside);
        EXPECT_EQ(touchesInApplication(), before + 1);
        EXPECT_NEAR(lastTouchInApplication().x, beside.x, 1e-9);
        EXPECT_NEAR(lastTouchInApplication().y, beside.y, 1e-9);
    }
    EXPECT_TRUE(events("openURL").empty());

    int const before = touchesInApplication();
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(touchedAt(middleOnScreen(contactButton(strip, i))).isDescendantOfView(strip));
    phone().tap(middleOnScreen(contactButton(strip)));
    wait(1);
    EXPECT_EQ(touchesInApplication(), before);
    EXPECT_EQ(told("openURL", "url"), Lines { "tel:+44207946-00" });
    EXPECT_FALSE(strip.superview());
}

TEST_P(OverlayTouchIn, GoesByASwipeUp)
{
    bootWithApplication(callingOptions());
    turn(GetParam());
    summon();

    swipe({ 0, 70 }, 0.15);   // down
    EXPECT_TRUE(isOverlayOnScreen());
    swipe({ 80, 0 }, 0.15);   // along the contacts
    EXPECT_TRUE(isOverlayOnScreen());
    swipe({ 60, -60 }, 0.15);   // neither
    EXPECT_TRUE(isOverlayOnScreen());
    swipe({ 0, -70 }, 1.2);   // too slow
    EXPECT_TRUE(isOverlayOnScreen());
    swipe({ 0, -25 }, 0.1);   // too short
    EXPECT_TRUE(isOverlayOnScreen());
    UIView const strip = phone().overlay();
    EXPECT_TRUE((strip.send<"isShown", BOOL>()));
    EXPECT_TRUE(events("openURL").empty());

    swipe({ 0, -70 }, 0.15);
    EXPECT_FALSE(isOverlayOnScreen());
    EXPECT_FALSE((strip.send<"isShown", BOOL>()));

    // From a contact as well, which is not taken for touched.
    summon();
    ASSERT_TRUE(isOverlayOnScreen());
    swipeFrom(middleOnScreen(contactButton(strip, 1)), { 0, -70 }, 0.15);
    EXPECT_FALSE(isOverlayOnScreen());
    EXPECT_TRUE(events("openURL").empty());
}

INSTANTIATE_TEST_SUITE_P(Orientations, OverlayTouchIn, testing::Values(1, 3, 4));

// What is in front turns into place within the time that the strip takes, from how it stood on the display.
TEST_F(OverlayTouch, TurnsTogetherWithTheApplication)
{
    bootWithApplication(callingOptions());
    summon();
    UIView const front = phone().windows().front().rootViewController().view();
    ASSERT_EQ(className(front.window()), "SBHomeScreenWindow");
    struct Row {
        int orientation;
        double cosine, sine;
        double seconds;
    };
    for (Row const row :
        { Row { 3, 0, -1, 0.3 }, Row { 4, -1, 0, 0.6 }, Row { 1, 0, -1, 0.3 }, Row { 4, 0, 1, 0.3 } }) {
        turn(row.orientation);
        EXPECT_EQ(front.transform(), kIdentity) << row.orientation;
        EXPECT_NEAR(front.presentation().transform.a, row.cosine, 1e-9) << row.orientation;
        EXPECT_NEAR(front.presentation().transform.b, row.sine, 1e-9) << row.orientation;
        wait(row.seconds / 2);
        EXPECT_NEAR(std::abs(front.presentation().transform.b), row.seconds > 0.5 ? 1 : std::sqrt(0.5), 0.05);
        // Touches reach it all the same.
        int const before = touchesInApplication();
        phone().tap({ 200, 300 }, 0.01);
        EXPECT_EQ(touchesInApplication(), before + 1) << row.orientation;
        wait(row.seconds);
        EXPECT_EQ(front.presentation().transform, kIdentity) << row.orientation;
    }
}

TEST_F(OverlayTouch, LeavesAWindowBehindThatLetsEverythingThrough)
{
    bootWithApplication(callingOptions());
    summon();
    CGPoint const place = middleOnScreen(phone().overlay());
    gesture();
    wait(1);

    UIWindow const window = overlayWindow();
    ASSERT_TRUE(window);
    EXPECT_FALSE(window.isHidden());
    EXPECT_TRUE(window.rootViewController().view().children().empty());
    EXPECT_EQ(window.rootViewController().view().backgroundColor().rgba().alpha, 0);
    phone().tap(place);
    EXPECT_EQ(touchesInApplication(), 1);
    EXPECT_EQ(lastTouchInApplication(), place);
}

TEST_F(OverlayTouch, LetsSwipesBesideItThrough)
{
    bootWithApplication(callingOptions());
    summon();
    phone().drag({ 195, 500 }, { 195, 420 }, 0.15);
    wait(0.5);
    EXPECT_TRUE(isOverlayOnScreen());
    EXPECT_EQ(touchesInApplication(), 1);
    EXPECT_EQ(lastTouchInApplication(), (CGPoint { 195, 420 }));

    // From the lower edge up: the application goes, the strip stays.
    phone().drag({ 195, 840 }, { 195, 700 }, 0.2);
    wait(0.5);
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");
    EXPECT_TRUE(isOverlayOnScreen());
}

TEST_F(OverlayTouch, IsOverEveryApplicationInTurn)
{
    BootOptions system = callingOptions();
    system.locked = false;
    boot(system);
    summon();
    CGRect const place = onScreen(phone().overlay());

    // An icon of the home screen opens its application, unless the finger has left it; a swipe up leads back.
    UIView const icon = viewsOfClass(phone().windows().front(), "SBIconView").at(5);
    CGPoint const on = middleOnScreen(icon);
    phone().drag(on, { on.x, on.y + 100 }, 0.3);
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");
    phone().tap(on);
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.mobilenotes");
    wait(0.5);
    phone().tap(on);
    EXPECT_EQ(touchesInApplication(), 1);
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.mobilenotes");
    phone().drag({ 195, 840 }, { 195, 700 }, 0.2);
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");

    EXPECT_EQ(onScreen(phone().overlay()), place);
}

TEST_F(OverlayTouch, ScrollsSidewaysUnderTheFinger)
{
    bootWithApplication(options("15.4", Json::object(), 8));
    summon();
    UIView const list = viewsOfClass(phone().overlay(), "UICollectionView").at(0);
    swipe({ -120, 0 }, 0.3);
    EXPECT_GT(list.bounds().origin.x, 50);
    EXPECT_TRUE(isOverlayOnScreen());
}

TEST_F(OverlayTouch, LiesOverApplicationsAndLockScreenAndUnderPrompts)
{
    boot(options("15.4"));
    summon();
    UIView const button = contactButton(phone().overlay());
    phone().touchDown(middleOnScreen(button));
    wait(0.5);
    phone().touchUp(middleOnScreen(button));
    wait(1);

    Lines names;
    double level = -1;
    UIWindow front;
    for (UIWindow const window : phone().windows()) {
        EXPECT_GE(window.windowLevel(), level);
        level = window.windowLevel();
        if (window.isHidden())
            continue;
        names.push_back(className(window) + ' ' + std::to_string(int(level)));
        front = window;
    }
    EXPECT_EQ(names,
        (Lines {
            "SBHomeScreenWindow 0", "SBCoverSheetWindow 1050", "BAContainingWindow 1999", "UIWindow 2001" }));
    // The sheet takes touches where it lies over the strip, and hides nothing from the window below when it goes.
    EXPECT_TRUE(touchedAt({ 195, 84 }).isDescendantOfView(front));
}

TEST_F(OverlayTouch, IsReachedOverTheLockScreen)
{
    boot(callingOptions());
    summon();
    UIView const strip = phone().overlay();
    EXPECT_TRUE(touchedAt(middleOnScreen(contactButton(strip))).isDescendantOfView(strip));
    UIView const below = touchedAt({ 195, 400 });
    ASSERT_TRUE(below);
    EXPECT_EQ(className(below.window()), "SBCoverSheetWindow");
}

TEST_F(OverlayTouch, MovesToTheFingerWhileItComesIn)
{
    bootWithApplication(callingOptions());
    gesture();
    wait(0.2);
    // Interaction is allowed during the showing; a touch meets the strip where it is going to be.
    UIView const strip = phone().overlay();
    EXPECT_TRUE(touchedAt(middleOnScreen(strip)).isDescendantOfView(strip));
}

}
