// The strip's answers to its layout, its turning and leaving, and what a content view has for form's sake.
#include "tests/plugin/strip/strip_fixture.hpp"

#include "phone/uikit/geometry.hpp"

#include <cmath>
#include <numbers>
#include <tuple>

namespace phone {

class StripMotion : public StripTest {
protected:
    static void bootBare(std::size_t contacts = 3)
    {
        boot(options("13.7", { { "isEnabled", false } }, contacts));
    }
    static UIView shownOverlay(CGRect frame = { { 10, -100 }, { 222, 88 } })
    {
        UIView const strip = makeStrip(frame, record(), true);
        show(strip);
        return strip;
    }
    static UIView shownLockScreenStrip()
    {
        UIView const strip = makeStrip(lockScreenFrame(), record());
        show(strip);
        return strip;
    }
    static void expectFrame(UIView view, double x, double y, double width, double height)
    {
        expectTree(tree(view)["frame"], rect(x, y, width, height));
    }
};

TEST_F(StripMotion, AnswersItsLayout)
{
    bootBare();
    struct Row {
        std::uint64_t style;
        bool isOverlay;
        double slot;
    };
    for (Row const row : { Row { 1, false, 74 }, Row { 2, false, 78 }, Row { 2, true, 74 },
             Row { 1, true, 74 }, Row { 0, false, 74 } }) {
        StripRecord settings = record();
        settings.style = row.style;
        UIView const strip = makeStrip(lockScreenFrame(), settings, row.isOverlay);
        UIView const list = collectionView(strip);
        objc::handle const none;
        auto const size =
            strip.send<"collectionView:layout:sizeForItemAtIndexPath:", CGSize>(list, none, none);
        EXPECT_NEAR(size.width, row.slot, 1e-9) << row.style;
        EXPECT_EQ(size.height, 65);
        auto const insets = strip.send<"collectionView:layout:insetForSectionAtIndex:", UIEdgeInsets>(
            list, none, NSInteger { 0 });
        EXPECT_EQ(insets.top + insets.left + insets.bottom + insets.right, 0);
        EXPECT_EQ((strip.send<"collectionView:layout:minimumLineSpacingForSectionAtIndex:", CGFloat>(
                      list, none, NSInteger { 0 })),
            0);
        EXPECT_FALSE((strip.send<"collectionView:shouldSelectItemAtIndexPath:", BOOL>(list, none)));
    }
}

TEST_F(StripMotion, SizesSlotsByTheStripMadeLast)
{
    bootBare();
    UIView const first = makeStrip(lockScreenFrame(), record());
    StripRecord settings = record();
    settings.style = 2;
    makeStrip(lockScreenFrame(), settings);

    objc::handle const none;
    auto const size = first.send<"collectionView:layout:sizeForItemAtIndexPath:", CGSize>(
        collectionView(first), none, none);
    EXPECT_NEAR(size.width, 78, 1e-9);
}

TEST_F(StripMotion, LaysItsRowOutAnewWhenItsControllerHas)
{
    bootBare();
    UIView const strip = shownLockScreenStrip();
    StripRecord settings = record();
    settings.style = 2;
    makeStrip(lockScreenFrame(), settings);
    ASSERT_NEAR(cells(strip)[1].frame().origin.x, 74, 1e-9);

    strip.send<"viewDidLayoutSubviews">();
    layoutWindowsIfNeeded();
    EXPECT_NEAR(cells(strip)[1].frame().origin.x, 78, 1e-9);
}

TEST_F(StripMotion, TurnsWithTheApplication)
{
    bootBare();
    UIView const strip = shownOverlay();
    struct Row {
        int orientation;
        CGPoint origin;   // before the centre moves
        CGSize size;
        double angle;
        bool centresAcross;
    };
    // In landscape the main screen is 844 wide and 390 high.
    for (Row const row : {
             Row { 1, { 10, 40 }, { 222, 88 }, 0, true },
             Row { 2, { 10, 40 }, { 222, 88 }, 0, false },
             Row { 3, { 390 - 98, 263 }, { 88, 222 }, std::numbers::pi / 2, false },
             Row { 4, { 10, 195 }, { 88, 222 }, -std::numbers::pi / 2, false },
         }) {
        SCOPED_TRACE(row.orientation);
        ASSERT_TRUE(phone().setOrientation(row.orientation, { false, false }));
        std::size_t const since = phone().trace().count();
        strip.send<"rotateView">();
        phone().advance(0.5);

        double const half = (row.orientation < 3 ? 390.0 : 844.0) / 2;
        CGRect const frame = strip.frame();
        EXPECT_NEAR(frame.size.width, row.size.width, 1e-9);
        EXPECT_NEAR(frame.size.height, row.size.height, 1e-9);
        EXPECT_NEAR(frame.origin.x, row.centresAcross ? half - row.size.width / 2 : row.origin.x, 1e-9);
        EXPECT_NEAR(frame.origin.y, row.centresAcross ? row.origin.y : half - row.size.height / 2, 1e-9);
        EXPECT_NEAR(strip.bounds().size.width, 222, 1e-9);
        CGAffineTransform const turned = strip.transform();
        EXPECT_NEAR(turned.a, std::cos(row.angle), 1e-9);
        EXPECT_NEAR(turned.b, std::sin(row.angle), 1e-9);

        auto const animations = events("animate", since);
        ASSERT_EQ(animations.size(), 1u);
        EXPECT_EQ(animations[0]["duration"], 0.3);
        EXPECT_EQ(animations[0]["completion"], false);
        // The transform comes before the frame, whose size is read in between.
        auto const frames = events("frame", since);
        ASSERT_EQ(frames.size(), 3u);
        EXPECT_EQ(told("frame", "call", since),
            (std::vector<std::string> { "setTransform:", "setFrame:", "setCenter:" }));
        EXPECT_EQ(told("frame", "view", since), std::vector<std::string>(3, "overlay"));
        EXPECT_NEAR(frames[0]["value"]["transform"][1], std::sin(row.angle), 1e-9);
        EXPECT_NEAR(frames[1]["value"]["rect"][0], row.origin.x, 1e-9);
        EXPECT_NEAR(frames[1]["value"]["rect"][1], row.origin.y, 1e-9);
    }
}

// Places are cut to whole points, and the part of the width is taken in single precision: 832 / 3.2 would be 260.
TEST_F(StripMotion, TurnsToWholePoints)
{
    BootOptions booted = options("13.7", { { "isEnabled", false } }, 3);
    booted.width = 375.5;
    booted.height = 832;
    booted.scale = 2;
    boot(booted);
    for (bool const isOverlay : { true, false }) {
        UIView const strip = makeStrip({ { 10, -100 }, { 222, 88 } }, record(), isOverlay);
        show(strip);
        for (auto const& [orientation, x, y] : { std::tuple { 3, 277, 259 }, { 4, 10, 187 } }) {
            ASSERT_TRUE(phone().setOrientation(orientation, { false, false }));
            std::size_t const since = phone().trace().count();
            strip.send<"rotateView">();
            auto const frames = events("frame", since);
            ASSERT_EQ(frames.size(), 3u);
            expectTree(frames[1]["value"], rect(x, y, 88, 222));
            phone().advance(0.5);
            EXPECT_NEAR(strip.center().y, 416, 1e-9);
            EXPECT_NEAR(strip.bounds().size.width, 222, 1e-9);
        }
    }
}

TEST_F(StripMotion, LeavesToTheSideThatTheOrientationSays)
{
    bootBare();
    struct Row {
        int orientation;
        double x, y;
    };
    for (Row const row :
        { Row { 1, 30, -100 }, Row { 2, 944, 50 }, Row { 3, 490, 50 }, Row { 4, -100, 50 } }) {
        SCOPED_TRACE(row.orientation);
        ASSERT_TRUE(phone().setOrientation(row.orientation, { false, false }));
        UIView const strip = shownOverlay({ { 30, 50 }, { 222, 88 } });
        strip.send<"makeBannerGone">();
        expectFrame(strip, row.x, row.y, 222, 88);
        phone().advance(0.15);
        EXPECT_TRUE(strip.superview());
        phone().advance(0.1);
        EXPECT_FALSE(strip.superview());
        EXPECT_EQ(events("animate").back()["duration"], 0.2);
    }
}

TEST_F(StripMotion, NeverLeavesTheLockScreen)
{
    bootBare();
    UIView const strip = shownLockScreenStrip();
    std::size_t const since = phone().trace().count();
    strip.send<"makeBannerGone">();
    phone().advance(1);

    EXPECT_TRUE(strip.superview());
    expectFrame(strip, 0, 27, 335, 80);
    EXPECT_TRUE(events("animate", since).empty());
}

TEST_F(StripMotion, TintsAndFadesTheCardOfTheOverlayAlone)
{
    bootBare();
    UIView const lockScreenStrip = makeStrip(lockScreenFrame(), record());
    UIView const overlay = shownOverlay();
    UIView const card = viewsOfClass(overlay, "UIVisualEffectView").at(0);
    UIColor const blue = UIColor::colorWithRed(0, 0, 1, 0.9);

    lockScreenStrip.send<"setBlurrEffectColorNonLS:">(blue);
    lockScreenStrip.send<"setBlurrEffectAlphaNonLS:">(CGFloat { 0.25 });
    EXPECT_FALSE(card.backgroundColor());
    EXPECT_EQ(card.alpha(), 1);

    overlay.send<"setBlurrEffectColorNonLS:">(blue);
    overlay.send<"setBlurrEffectAlphaNonLS:">(CGFloat { 0.25 });
    expectTree(tree(card), { { "backgroundColor", color(0, 0, 1, 0.1) }, { "alpha", 0.25 } });
    overlay.send<"setBlurrEffectColorNonLS:">(objc::handle {});
    EXPECT_FALSE(card.backgroundColor());

    // The card is the one that was made last, whoever's it is.
    UIView const later = makeStrip(lockScreenFrame(), record());
    overlay.send<"setBlurrEffectAlphaNonLS:">(CGFloat { 0.5 });
    EXPECT_EQ(card.alpha(), 0.25);
    EXPECT_EQ(viewsOfClass(later, "UIVisualEffectView").at(0).alpha(), 0.5);
}

TEST_F(StripMotion, HasInertMembers)
{
    bootBare();
    UIView const strip = shownLockScreenStrip();
    Json const before = tree(strip);
    strip.send<"refresh">();
    strip.send<"setContentHost:">(strip);
    strip.send<"setSizeToMimic:">(CGSize { 1, 2 });
    strip.send<"_layoutContentHost">();
    strip.send<"_updateSizeToMimic">();
    EXPECT_FALSE((strip.send<"contentHost", objc::handle>()));
    EXPECT_EQ((strip.send<"_optionsForMainOverlay", NSUInteger>()), 0u);
    auto const mimicked = strip.send<"sizeToMimic", CGSize>();
    EXPECT_EQ(mimicked.width, 335);
    EXPECT_EQ(mimicked.height, 80);
    EXPECT_EQ(tree(strip)["frame"], before["frame"]);

    EXPECT_FALSE((strip.send<"isShown", BOOL>()));
    strip.send<"setIsShown:">(BOOL { true });
    EXPECT_TRUE((strip.send<"isShown", BOOL>()));
    EXPECT_FALSE((strip.send<"contactButton", objc::handle>()));
    EXPECT_FALSE((strip.send<"contactFirstName", objc::handle>()));
    for (char const* each :
        { "UICollectionViewDataSource", "UICollectionViewDelegateFlowLayout", "UICollectionViewDelegate" })
        EXPECT_TRUE((strip.send<"conformsToProtocol:", BOOL>(
            objc::handle { reinterpret_cast<id>(objc_getProtocol(each)) })))
            << each;
}

}
