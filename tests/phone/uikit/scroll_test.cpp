#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_scroll_view.hpp"
#include "tests/phone/uikit/uikit_fixture.hpp"

#include <algorithm>

namespace phone::testing {
namespace {

// A row 355 points wide over a content of 1000.
class Scroll : public UIKitTest {
protected:
    void SetUp() override
    {
        UIKitTest::SetUp();
        m_recorder = Recorder::make();
        m_scroll = make<UIScrollView>(CGRectMake(10, 100, 355, 80));
        m_scroll->setContentSize({ 1000, 80 });
        m_scroll->setDelegate(recorder());
        window().addSubview(m_scroll.get());
    }
    Recorder recorder() const { return m_recorder; }
    UIScrollView scroll() const { return m_scroll; }
    double x() const { return m_scroll->contentOffset().x; }
    objc::ref<UIButton> addButton(UIView superview)
    {
        auto const button = make<UIButton>(CGRectMake(100, 0, 45, 45));
        button->addTarget(recorder(), objc::selector<"down:">(), ControlEvent::touchDown);
        button->addTarget(recorder(), objc::selector<"upInside:">(), ControlEvent::touchUpInside);
        button->addTarget(recorder(), objc::selector<"cancelled:">(), ControlEvent::touchCancel);
        superview.addSubview(button.get());
        return button;
    }
    Calls const& calls() const { return recorder().calls(); }

private:
    objc::ref<Recorder> m_recorder;
    objc::ref<UIScrollView> m_scroll;
};

TEST_F(Scroll, FollowsTheFingerAfterTheSlop)
{
    drag({ 300, 140 }, { 200, 140 }, 0.5, 0.3);

    EXPECT_NEAR(x(), 90, 1e-9);
    EXPECT_EQ(calls().front(), "willBeginDragging");
    EXPECT_EQ(calls().back(), "didEndDragging");
}

TEST_F(Scroll, CoastsAfterAFlickAndTellsWhenItRests)
{
    drag({ 300, 140 }, { 250, 140 }, 0.1);
    double const atLift = x();
    EXPECT_TRUE(scroll().isDecelerating());
    EXPECT_EQ(recorder().count("didEndDragging, decelerates"), 1u);
    advance(5);

    // 500 points a second go on for 0.4995 s of way.
    EXPECT_NEAR(x() - atLift, 500 * 0.4995, 15);
    EXPECT_FALSE(scroll().isDecelerating());
    EXPECT_EQ(calls().back(), "didEndDecelerating");
}

TEST_F(Scroll, PullsOutAsARubberBandAndSpringsBack)
{
    down({ 100, 140 });
    for (int i = 1; i <= 21; ++i) {
        advance(0.02);
        move({ 100.0 + 10 * i, 140 });
    }
    EXPECT_NEAR(x(), -(1 - 1 / (200 * 0.55 / 355 + 1)) * 355, 1e-6);
    advance(0.3);
    up({ 310, 140 });
    advance(1.5);

    EXPECT_DOUBLE_EQ(x(), 0);
}

TEST_F(Scroll, StaysAtTheEndWithoutBounces)
{
    scroll().setBounces(false);

    drag({ 100, 140 }, { 300, 140 }, 0.2);
    EXPECT_DOUBLE_EQ(x(), 0);
    scroll().setContentOffset({ 640, 0 });
    drag({ 300, 140 }, { 100, 140 }, 0.1);
    advance(3);

    EXPECT_DOUBLE_EQ(x(), 645);
}

TEST_F(Scroll, LeavesAFittingContentAlone)
{
    scroll().setContentSize({ 200, 80 });
    auto const button = addButton(scroll());

    drag({ 130, 120 }, { 90, 120 }, 0.2);

    EXPECT_DOUBLE_EQ(x(), 0);
    EXPECT_EQ(recorder().count("willBeginDragging"), 0u);
    scroll().setAlwaysBounceHorizontal(true);
    drag({ 300, 140 }, { 200, 140 }, 0.2, 0.2);
    EXPECT_EQ(recorder().count("willBeginDragging"), 1u);
}

TEST_F(Scroll, IgnoresStrokesAcross)
{
    drag({ 200, 110 }, { 203, 170 }, 0.2);

    EXPECT_DOUBLE_EQ(x(), 0);
    EXPECT_EQ(calls(), (Calls {}));
}

TEST_F(Scroll, HoldsTheContentsTouchBackForAMoment)
{
    addButton(scroll());

    down({ 130, 120 });
    EXPECT_EQ(calls(), (Calls {}));
    advance(0.14);
    EXPECT_EQ(calls(), (Calls {}));
    advance(0.02);
    EXPECT_EQ(calls(), (Calls { "down" }));
    up({ 130, 120 });

    EXPECT_EQ(calls(), (Calls { "down", "upInside" }));
}

TEST_F(Scroll, QuickTapReachesTheContent)
{
    addButton(scroll());

    tap({ 130, 120 });

    EXPECT_EQ(calls(), (Calls { "down", "upInside" }));
}

TEST_F(Scroll, QuickDragNeverTouchesTheContent)
{
    addButton(scroll());

    drag({ 130, 120 }, { 60, 120 }, 0.1, 0.3);

    EXPECT_EQ(recorder().count("down"), 0u);
    EXPECT_NEAR(x(), 60, 1e-9);
}

TEST_F(Scroll, ControlThatHasTheTouchKeepsItInAPlainScrollView)
{
    addButton(scroll());

    down({ 130, 120 });
    advance(0.2);
    move({ 100, 120 });
    move({ 60, 120 });
    up({ 60, 120 });

    EXPECT_DOUBLE_EQ(x(), 0);
    EXPECT_EQ(recorder().count("cancelled"), 0u);
}

TEST_F(Scroll, WithoutDelayTheContentIsTouchedAtOnce)
{
    scroll().setDelaysContentTouches(false);
    addButton(scroll());

    down({ 130, 120 });

    EXPECT_EQ(calls(), (Calls { "down" }));
    touchDelivery().cancelAll();
}

TEST_F(Scroll, TouchThatStopsACoastDoesNotReachTheContent)
{
    addButton(scroll());
    drag({ 300, 140 }, { 200, 140 }, 0.1);
    advance(0.1);
    ASSERT_TRUE(scroll().isDecelerating());
    double const before = x();

    tap({ 130, 120 });
    advance(1);

    EXPECT_NEAR(x(), before, 1e-9);
    EXPECT_EQ(recorder().count("down"), 0u);
}

TEST_F(Scroll, TurnsOnePageAFlick)
{
    scroll().setPagingEnabled(true);
    scroll().setContentSize({ 355 * 4, 80 });

    drag({ 300, 140 }, { 220, 140 }, 0.08);
    advance(2);
    EXPECT_DOUBLE_EQ(x(), 355);
    drag({ 300, 140 }, { 10, 140 }, 0.05);
    advance(2);
    EXPECT_DOUBLE_EQ(x(), 710);
    drag({ 100, 140 }, { 200, 140 }, 1, 0.5);
    advance(2);
    EXPECT_DOUBLE_EQ(x(), 710);
    drag({ 100, 140 }, { 180, 140 }, 0.08);
    advance(2);
    EXPECT_DOUBLE_EQ(x(), 355);
}

TEST_F(Scroll, WheelMovesIt)
{
    EXPECT_TRUE(touchDelivery().wheel({ 100, 140 }, 0, 40));
    EXPECT_DOUBLE_EQ(x(), 40);
    EXPECT_TRUE(touchDelivery().wheel({ 100, 140 }, 10000, 0));
    EXPECT_DOUBLE_EQ(x(), 645);
    EXPECT_FALSE(touchDelivery().wheel({ 100, 140 }, 10, 0));
    EXPECT_FALSE(touchDelivery().wheel({ 100, 400 }, -10, 0));
}

TEST_F(Scroll, WheelSettlesOnAPage)
{
    scroll().setPagingEnabled(true);

    touchDelivery().wheel({ 100, 140 }, 200, 0);
    EXPECT_DOUBLE_EQ(x(), 200);
    advance(1);

    EXPECT_DOUBLE_EQ(x(), 355);
}

TEST_F(Scroll, AnimatesToAnOffset)
{
    scroll().setContentOffsetAnimated({ 200, 0 }, true);
    EXPECT_DOUBLE_EQ(x(), 0);
    advance(0.15);
    EXPECT_NEAR(x(), 100, 5);
    advance(0.2);

    EXPECT_DOUBLE_EQ(x(), 200);
    EXPECT_EQ(calls().back(), "didEndScrollingAnimation");
}

TEST_F(Scroll, FollowsAMirroredFinger)
{
    scroll().setTransform(scaling(-1, 1));

    drag({ 100, 140 }, { 200, 140 }, 0.5, 0.3);

    EXPECT_NEAR(x(), 90, 1e-9);
}

TEST_F(Scroll, StaysInsideAContentThatShrinks)
{
    scroll().setContentOffset({ 600, 0 });
    scroll().setContentSize({ 500, 80 });
    EXPECT_DOUBLE_EQ(x(), 145);

    scroll().setContentSize({ 100, 80 });
    EXPECT_DOUBLE_EQ(x(), 0);
}

TEST_F(Scroll, ShowsABarWhileItMoves)
{
    auto const bars = [this] { return scroll().children().size(); };
    scroll().setContentOffset({ 100, 0 });
    EXPECT_EQ(bars(), 0u);

    touchDelivery().wheel({ 100, 140 }, 545, 0);
    ASSERT_EQ(bars(), 1u);
    CGRect const frame = scroll().children().front().frame();
    EXPECT_NEAR(maxX(frame), 645 + 352, 1e-9);
    EXPECT_NEAR(frame.size.width, 349 * 0.355, 1e-9);
    EXPECT_EQ(maxY(frame), 77);
    advance(0.6);
    EXPECT_EQ(bars(), 1u);
    advance(0.3);
    EXPECT_EQ(bars(), 0u);

    scroll().setShowsHorizontalScrollIndicator(false);
    touchDelivery().wheel({ 100, 140 }, -100, 0);
    EXPECT_EQ(bars(), 0u);
}

TEST(ScrollIndicator, IsPressedTogetherPastAnEnd)
{
    IndicatorSpan const atStart = indicatorSpan(0, 0, 1000, 500);
    IndicatorSpan const pulled = indicatorSpan(-50, 0, 1000, 500);
    IndicatorSpan const pushed = indicatorSpan(1050, 0, 1000, 500);

    EXPECT_EQ(atStart.start, 3);
    EXPECT_EQ(pulled.start, 3);
    EXPECT_EQ(pulled.length, atStart.length - 50);
    EXPECT_EQ(pushed.start + pushed.length, 497);
    EXPECT_EQ(indicatorSpan(0, 0, 1e9, 500).length, 36);
    EXPECT_EQ(indicatorSpan(-1e6, 0, 1e9, 500).length, 7);
    EXPECT_EQ(indicatorSpan(0, 0, 100, 4).length, 0);
}

// The size used to drift, a rounding error a step.
TEST_F(Scroll, KeepsItsSize)
{
    scroll().setFrame(CGRectMake(0.1, 0.3, 354.7, 76.7));

    drag({ 300, 40 }, { 100, 40 }, 0.3);
    advance(5);

    EXPECT_EQ(scroll().bounds().size, (CGSize { 354.7, 76.7 }));
}

TEST_F(Scroll, MayGoWhileItMoves)
{
    {
        AutoreleasePool const pool;
        auto const view = make<UIScrollView>(CGRectMake(0, 300, 355, 80));
        view->setContentSize({ 2000, 80 });
        window().addSubview(view.get());
        drag({ 300, 340 }, { 200, 340 }, 0.1);
        ASSERT_TRUE(view->isDecelerating());
        view->removeFromSuperview();
    }

    advance(0.1);

    EXPECT_FALSE(clock().isAnimating());
}

}
}
