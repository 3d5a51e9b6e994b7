#include "phone/uikit/animation.hpp"
#include "tests/phone/uikit/core_fixture.hpp"

#include <cmath>
#include <numbers>

namespace phone::testing {

class Animation : public CoreTest { };

TEST_F(Animation, MovesWhatIsShownAlongTheCurve)
{
    auto const view = addView(CGRectMake(0, 0, 10, 10));
    std::vector<bool> completions;

    animate(
        0.3, [raw = view.get()] { raw.setFrame(CGRectMake(100, 0, 10, 10)); },
        [&](bool finished) { completions.push_back(finished); });

    EXPECT_EQ(view->frame(), CGRectMake(100, 0, 10, 10));
    EXPECT_EQ(view->presentation().center.x, 5);
    advance(0.15);
    EXPECT_NEAR(
        view->presentation().center.x, 55, 0.01);   // ease in, ease out: half the way at half the time
    advance(0.149);
    EXPECT_TRUE(completions.empty());
    advance(0.002);
    EXPECT_EQ(completions, (std::vector<bool> { true }));
    EXPECT_EQ(view->presentation().center.x, 105);
    EXPECT_FALSE(hasRunningAnimations());
}

TEST_F(Animation, WaitsForTheDelay)
{
    auto const view = addView({});

    animateWithOptions(0.2, 0.5, AnimationOption::curveLinear, [raw = view.get()] { raw.setAlpha(0); });

    advance(0.5);
    EXPECT_EQ(view->presentation().alpha, 1);
    advance(0.1);
    EXPECT_NEAR(view->presentation().alpha, 0.5, 1e-9);
    EXPECT_EQ(view->alpha(), 0);
}

TEST_F(Animation, WithoutDurationAppliesAtOnce)
{
    auto const view = addView({});
    int completions = 0;

    animate(
        0, [raw = view.get()] { raw.setAlpha(0.5); }, [&](bool finished) { completions += finished; });

    EXPECT_EQ(completions, 1);
    EXPECT_EQ(view->presentation().alpha, 0.5);
}

TEST_F(Animation, WithoutChangesCompletesAtTheEndOfTheTurn)
{
    int completions = 0;

    animate(
        3, [] {}, [&](bool finished) { completions += finished; });
    EXPECT_EQ(completions, 0);
    clock().runLoopTurn();

    EXPECT_EQ(completions, 1);
}

TEST_F(Animation, TakesOverWhereTheOlderOneIs)
{
    auto const view = addView({});
    animateWithOptions(1, 0, AnimationOption::curveLinear, [raw = view.get()] { raw.setAlpha(0); });
    advance(0.5);

    animateWithOptions(1, 0, AnimationOption::curveLinear, [raw = view.get()] { raw.setAlpha(1); });

    EXPECT_NEAR(view->presentation().alpha, 0.5, 1e-9);
    advance(0.5);
    EXPECT_NEAR(view->presentation().alpha, 0.75, 1e-9);
}

TEST_F(Animation, EndsUnfinishedWhenItsViewLeavesTheWindow)
{
    auto const view = addView({});
    std::vector<bool> completions;
    animate(
        1, [raw = view.get()] { raw.setAlpha(0); }, [&](bool finished) { completions.push_back(finished); });
    advance(0.2);

    view->removeFromSuperview();
    clock().runLoopTurn();

    EXPECT_EQ(completions, (std::vector<bool> { false }));
}

TEST_F(Animation, EndsUnfinishedWhenItsViewGoes)
{
    std::vector<bool> completions;
    {
        auto const view = make<UIView>();
        animate(
            1, [raw = view.get()] { raw.setAlpha(0); },
            [&](bool finished) { completions.push_back(finished); });
    }
    advance(2);

    EXPECT_EQ(completions, (std::vector<bool> { false }));
}

TEST_F(Animation, RunsForAViewThatIsAddedInTheSameTurn)
{
    auto const view = make<UIView>();
    bool hasFinished = false;

    animate(
        0.3,
        [raw = view.get()] {
            raw.setCenter({ 50, 50 });
        },
        [&](bool finished) { hasFinished = finished; });
    root().addSubview(view);
    advance(0.15);

    EXPECT_NEAR(view->presentation().center.x, 25, 0.1);
    advance(0.2);
    EXPECT_TRUE(hasFinished);
}

TEST_F(Animation, BlocksTouchesUnlessItAllowsThem)
{
    auto const view = addView(CGRectMake(0, 0, 50, 50));

    animate(1, [raw = view.get()] { raw.setAlpha(0.5); });
    EXPECT_EQ(root().sendHitTest({ 10, 10 }), root());
    advance(1.1);
    EXPECT_EQ(root().sendHitTest({ 10, 10 }), view.get());

    animateWithOptions(1, 0, AnimationOption::allowUserInteraction, [raw = view.get()] { raw.setAlpha(1); });
    EXPECT_EQ(root().sendHitTest({ 10, 10 }), view.get());
}

TEST_F(Animation, ABlockInsideTakesTheOuterTime)
{
    auto const view = addView({});

    animateWithOptions(1, 0, AnimationOption::curveLinear, [raw = view.get()] {
        animateWithOptions(0.1, 0, AnimationOption::curveLinear, [raw] { raw.setAlpha(0); });
        performWithoutAnimation([raw] { raw.setCenter({ 9, 9 }); });
    });
    advance(0.5);

    EXPECT_NEAR(view->presentation().alpha, 0.5, 1e-9);
    EXPECT_EQ(view->presentation().center, (CGPoint { 9, 9 }));
}

// The four numbers each on their own way would shrink the view to nothing half-way through half a turn.
TEST_F(Animation, TurnsAsAWhole)
{
    auto const view = addView(CGRectMake(0, 0, 50, 50));
    constexpr double kHalfTurn = std::numbers::pi;
    struct Row {
        double from, to, middle;
    };
    for (Row const row : { Row { 0, kHalfTurn / 2, kHalfTurn / 4 }, Row { kHalfTurn / 2, -kHalfTurn / 2, 0 },
             Row { 0.75 * kHalfTurn, -0.75 * kHalfTurn, kHalfTurn } }) {
        view->setTransform(rotation(row.from));
        animateWithOptions(1, 0, AnimationOption::curveLinear,
            [raw = view.get(), row] { raw.setTransform(rotation(row.to)); });
        advance(0.5);
        CGAffineTransform const shown = view->presentation().transform;
        EXPECT_NEAR(std::abs(shown.a * shown.d - shown.b * shown.c), 1, 1e-9) << row.from;
        EXPECT_NEAR(shown.a, std::cos(row.middle), 1e-9) << row.from;
        EXPECT_NEAR(shown.b, std::sin(row.middle), 1e-9) << row.from;
        advance(1);
        EXPECT_EQ(view->presentation().transform, rotation(row.to));
    }
}

TEST_F(Animation, ScalesMirrorsShearsAndMovesOnStraightWays)
{
    auto const view = addView(CGRectMake(0, 0, 50, 50));
    struct Row {
        CGAffineTransform from, to, middle;
    };
    for (Row const& row : { Row { kIdentity, { 3, 0, 0, 2, 10, 20 }, { 2, 0, 0, 1.5, 5, 10 } },
             Row { { -1, 0, 0, 1, 0, 0 }, { -2, 0, 0, 2, 0, 0 }, { -1.5, 0, 0, 1.5, 0, 0 } },
             Row { { 1, 0, 0, -1, 0, 0 }, { 1, 0, 0, -3, 0, 0 }, { 1, 0, 0, -2, 0, 0 } },
             Row { kIdentity, { 1, 0, 0.5, 1, 0, 0 }, { 1, 0, 0.25, 1, 0, 0 } },
             Row { { 0, 0, 0, 0, 0, 0 }, kIdentity, { 0.5, 0, 0, 0.5, 0, 0 } } }) {
        view->setTransform(row.from);
        animateWithOptions(
            1, 0, AnimationOption::curveLinear, [raw = view.get(), &row] { raw.setTransform(row.to); });
        advance(0.5);
        CGAffineTransform const shown = view->presentation().transform;
        for (auto const part : { &CGAffineTransform::a, &CGAffineTransform::b, &CGAffineTransform::c,
                 &CGAffineTransform::d, &CGAffineTransform::tx, &CGAffineTransform::ty })
            EXPECT_NEAR(shown.*part, row.middle.*part, 1e-9);
        advance(1);
    }
}

TEST_F(Animation, RepeatsBackAndForth)
{
    auto const view = addView({});

    animateWithOptions(1, 0,
        AnimationOption::curveLinear | AnimationOption::repeat | AnimationOption::autoreverse,
        [raw = view.get()] { raw.setAlpha(0); });

    advance(0.75);
    EXPECT_NEAR(view->presentation().alpha, 0.25, 1e-9);
    advance(0.5);
    EXPECT_NEAR(view->presentation().alpha, 0.25, 1e-9);
    removeAllAnimations(view);
    EXPECT_EQ(view->presentation().alpha, 0);
}

TEST_F(Animation, MessagesAreTraced)
{
    auto const view = addView({});
    int completions = 0;
    auto changes = objc::block([raw = view.get()] { raw.setAlpha(0.1); });
    auto completion = objc::block([&completions](BOOL finished) { completions += finished; });

    UIView::cls().send<"animateWithDuration:delay:options:animations:completion:">(
        0.2, 0.0, NSUInteger { 131072 }, objc::lent(changes), objc::lent(completion));
    UIView::cls().send<"transitionWithView:duration:options:animations:completion:">(
        view.get(), 0.7, NSUInteger { 131072 }, objc::lent(changes), objc::block_ref<void(BOOL)> {});
    advance(1);

    EXPECT_EQ(completions, 1);
    Json const all = events("animate");
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]["duration"], 0.2);
    EXPECT_EQ(all[0]["options"], 131072);
    EXPECT_EQ(all[0]["completion"], true);
    EXPECT_FALSE(all[0].contains("transition"));
    EXPECT_EQ(all[1]["transition"], true);
    EXPECT_EQ(all[1]["completion"], false);
}

}
