#include "tests/phone/uikit/core_fixture.hpp"

#include <limits>
#include <numbers>

namespace phone::testing {

class ViewGeometry : public CoreTest {
protected:
    // The autoresizing mask at work on a view in a superview that grows from 100 to 200 both ways.
    CGRect afterGrowing(CGRect frame, NSUInteger mask)
    {
        auto const superview = addView(CGRectMake(0, 0, 100, 100));
        auto const view = make<UIView>(frame);
        view->setAutoresizingMask(mask);
        superview->addSubview(view);
        superview->setFrame(CGRectMake(0, 0, 200, 200));
        return view->frame();
    }
};

TEST_F(ViewGeometry, FrameFollowsCenterAndBounds)
{
    auto const view = addView(CGRectMake(10, 20, 30, 40));

    EXPECT_EQ(view->center(), (CGPoint { 25, 40 }));
    EXPECT_EQ(view->bounds(), CGRectMake(0, 0, 30, 40));

    view->setCenter({ 100, 100 });
    EXPECT_EQ(view->frame(), CGRectMake(85, 80, 30, 40));

    view->setBounds(CGRectMake(5, 5, 10, 10));
    EXPECT_EQ(view->frame(), CGRectMake(95, 95, 10, 10));
}

TEST_F(ViewGeometry, TransformedFrameIsTheBoundingBox)
{
    auto const view = addView(CGRectMake(0, 0, 100, 50));

    view->setTransform(scaling(2, 2));

    EXPECT_EQ(view->frame(), CGRectMake(-50, -25, 200, 100));
    EXPECT_EQ(view->bounds(), CGRectMake(0, 0, 100, 50));
    EXPECT_EQ(view->center(), (CGPoint { 50, 25 }));
}

TEST_F(ViewGeometry, SettingATurnedFrameSizesTheBoundsThroughTheInverse)
{
    auto const view = addView(CGRectMake(0, 0, 370, 88));

    view->setTransform(rotation(std::numbers::pi / 2));
    view->setFrame(CGRectMake(292, 121, 88, 370));

    EXPECT_NEAR(view->bounds().size.width, 370, 1e-9);
    EXPECT_NEAR(view->bounds().size.height, 88, 1e-9);
    EXPECT_NEAR(view->center().x, 336, 1e-9);
    EXPECT_NEAR(view->center().y, 306, 1e-9);
    EXPECT_NEAR(view->frame().size.width, 88, 1e-9);
}

TEST_F(ViewGeometry, RefusesNumbersThatAreNone)
{
    auto const view = addView(CGRectMake(1, 2, 3, 4));

    view->setFrame(CGRectMake(std::numeric_limits<double>::quiet_NaN(), 0, 10, 10));

    EXPECT_EQ(view->frame(), CGRectMake(1, 2, 3, 4));
}

TEST_F(ViewGeometry, NegativeSizesAreTurnedRound)
{
    auto const view = addView({});

    view->setFrame(CGRectMake(50, 50, -20, -10));

    EXPECT_EQ(view->frame(), CGRectMake(30, 40, 20, 10));
}

TEST_F(ViewGeometry, AutoresizingFollowsTheMask)
{
    CGRect const frame = CGRectMake(10, 20, 30, 60);   // margins 60 at the right, 20 at the bottom
    using namespace Autoresizing;

    EXPECT_EQ(afterGrowing(frame, 0), frame);
    EXPECT_EQ(afterGrowing(frame, width), CGRectMake(10, 20, 130, 60));
    EXPECT_EQ(afterGrowing(frame, height), CGRectMake(10, 20, 30, 160));
    EXPECT_EQ(afterGrowing(frame, width | height), CGRectMake(10, 20, 130, 160));
    EXPECT_EQ(afterGrowing(frame, leftMargin), CGRectMake(110, 20, 30, 60));
    EXPECT_EQ(afterGrowing(frame, rightMargin), frame);
    EXPECT_EQ(afterGrowing(frame, topMargin | bottomMargin), CGRectMake(10, 70, 30, 60));
    // All parts grow by their share.
    EXPECT_EQ(afterGrowing(frame, leftMargin | width | rightMargin), CGRectMake(20, 20, 60, 60));
}

TEST_F(ViewGeometry, AutoresizingFromNothingSharesEvenly)
{
    auto const superview = addView({});
    auto const view = make<UIView>();
    view->setAutoresizingMask(Autoresizing::leftMargin | Autoresizing::width);
    superview->addSubview(view);

    superview->setFrame(CGRectMake(0, 0, 100, 10));

    EXPECT_EQ(view->frame(), CGRectMake(50, 0, 50, 0));
}

TEST_F(ViewGeometry, ConvertsThroughMirrorsAndTurns)
{
    auto const mirrored = addView(CGRectMake(100, 100, 200, 100));
    mirrored->setTransform(scaling(-1, 1));
    auto const inner = make<UIView>(CGRectMake(10, 10, 50, 50));
    mirrored->addSubview(inner);

    EXPECT_EQ(inner->convertPointToView({ 0, 0 }, root()), (CGPoint { 290, 110 }));
    EXPECT_EQ(inner->convertPointFromView({ 290, 110 }, root()), (CGPoint { 0, 0 }));
    EXPECT_EQ(inner->convertRectToView(CGRectMake(0, 0, 50, 50), UIView {}), CGRectMake(240, 110, 50, 50));
}

TEST_F(ViewGeometry, HitTestingHonoursMirrorsHiddenViewsAndAlpha)
{
    auto const mirrored = addView(CGRectMake(0, 0, 200, 100));
    mirrored->setTransform(scaling(-1, 1));
    auto const inner = make<UIView>(CGRectMake(0, 0, 50, 100));
    mirrored->addSubview(inner);

    EXPECT_EQ(root().sendHitTest({ 190, 50 }), inner.get());
    EXPECT_EQ(root().sendHitTest({ 10, 50 }), mirrored.get());

    inner->setAlpha(0.009);
    EXPECT_EQ(root().sendHitTest({ 190, 50 }), mirrored.get());
    mirrored->setHidden(true);
    EXPECT_EQ(root().sendHitTest({ 190, 50 }), root());
    root().setUserInteractionEnabled(false);
    EXPECT_FALSE(root().sendHitTest({ 190, 50 }));
}

TEST_F(ViewGeometry, SafeAreaIsWhatLiesUnderTheScreensEdges)
{
    auto const low = addView(CGRectMake(0, 800, 390, 44));

    EXPECT_EQ(root().safeAreaInsets(), (UIEdgeInsets { 47, 0, 34, 0 }));
    EXPECT_EQ(low->safeAreaInsets(), (UIEdgeInsets { 0, 0, 34, 0 }));
}

}
