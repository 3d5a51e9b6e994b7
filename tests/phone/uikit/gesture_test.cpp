#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_long_press_gesture_recognizer.hpp"
#include "phone/uikit/ui_pan_gesture_recognizer.hpp"
#include "phone/uikit/ui_swipe_gesture_recognizer.hpp"
#include "phone/uikit/ui_tap_gesture_recognizer.hpp"
#include "tests/phone/uikit/uikit_fixture.hpp"

namespace phone::testing {
namespace {

class Gesture : public UIKitTest {
protected:
    void SetUp() override
    {
        UIKitTest::SetUp();
        m_recorder = Recorder::make();
        m_view = make<UIView>(CGRectMake(0, 0, 375, 667));
        window().addSubview(m_view.get());
    }
    Recorder recorder() const { return m_recorder; }
    UIView view() const { return m_view; }

    template <class T>
    objc::ref<T> add(UIView view, SEL action = objc::selector<"gesture:">())
    {
        auto const recognizer = objc::adopt(T {
            T::alloc().template send<"initWithTarget:action:", objc::handle>(recorder(), action).object });
        view.addGestureRecognizer(recognizer.get());
        return recognizer;
    }
    objc::ref<UIButton> addButton()
    {
        auto const button = make<UIButton>(CGRectMake(100, 100, 45, 45));
        button->addTarget(recorder(), objc::selector<"down:">(), ControlEvent::touchDown);
        button->addTarget(recorder(), objc::selector<"upInside:">(), ControlEvent::touchUpInside);
        button->addTarget(recorder(), objc::selector<"cancelled:">(), ControlEvent::touchCancel);
        view().addSubview(button.get());
        return button;
    }
    using States = std::vector<NSInteger>;

private:
    objc::ref<Recorder> m_recorder;
    objc::ref<UIView> m_view;
};

TEST_F(Gesture, LongPressBeginsWhileHeldAndCancelsTheButton)
{
    auto const button = addButton();
    auto const press = add<UILongPressGestureRecognizer>(button.get());
    press->setMinimumPressDuration(0.3);

    down({ 120, 120 });
    advance(0.29);
    EXPECT_EQ(recorder().calls(), (Calls { "down" }));
    advance(0.02);
    EXPECT_EQ(recorder().calls(), (Calls { "down", "gesture", "cancelled" }));
    move({ 130, 120 });
    up({ 130, 120 });

    EXPECT_EQ(recorder().states(), (States { 1, 2, 3 }));
    EXPECT_EQ(recorder().count("upInside"), 0u);
    EXPECT_TRUE(press->view() == button.get());
    EXPECT_EQ(press->state(), GestureState::possible);
}

TEST_F(Gesture, LongPressThatLiftsEarlyLeavesTheTapToTheButton)
{
    auto const press = add<UILongPressGestureRecognizer>(addButton().get());
    press->setMinimumPressDuration(0.3);

    down({ 120, 120 });
    advance(0.2);
    up({ 120, 120 });
    advance(1);

    EXPECT_EQ(recorder().calls(), (Calls { "down", "upInside" }));
}

TEST_F(Gesture, LongPressThatMovesTooFarFails)
{
    auto const press = add<UILongPressGestureRecognizer>(view());

    down({ 120, 120 });
    move({ 120, 129 });
    EXPECT_EQ(press->state(), GestureState::possible);
    move({ 120, 131 });
    EXPECT_EQ(press->state(), GestureState::failed);
    advance(1);
    up({ 120, 131 });

    EXPECT_EQ(recorder().states(), (States {}));
}

TEST_F(Gesture, LongPressOfADisabledRecogniserIsNone)
{
    auto const press = add<UILongPressGestureRecognizer>(view());
    press->setEnabled(false);

    down({ 120, 120 });
    advance(1);
    up({ 120, 120 });

    EXPECT_EQ(recorder().states(), (States {}));
}

TEST_F(Gesture, LongPressDisabledWhileHeldIsCancelled)
{
    auto const press = add<UILongPressGestureRecognizer>(view());

    down({ 120, 120 });
    advance(0.6);
    press->setEnabled(false);
    up({ 120, 120 });

    EXPECT_EQ(recorder().states(), (States { 1, 4 }));
}

struct SwipeCase {
    NSUInteger direction;
    CGPoint by;
    double seconds;
    bool isSwipe;
};

class Swipe : public Gesture, public ::testing::WithParamInterface<SwipeCase> { };

TEST_P(Swipe, IsAQuickStraightStroke)
{
    auto const swipe = add<UISwipeGestureRecognizer>(view());
    swipe->setDirection(GetParam().direction);
    CGPoint const from { 180, 300 };

    drag(from, { from.x + GetParam().by.x, from.y + GetParam().by.y }, GetParam().seconds);

    EXPECT_EQ(recorder().states(), GetParam().isSwipe ? (States { 3 }) : (States {}));
}

INSTANTIATE_TEST_SUITE_P(Strokes, Swipe,
    ::testing::Values(SwipeCase { 4, { 0, -80 }, 0.2, true }, SwipeCase { 8, { 0, 80 }, 0.2, true },
        SwipeCase { 1, { 80, 0 }, 0.2, true }, SwipeCase { 2, { -80, 10 }, 0.2, true },
        SwipeCase { 4, { 0, 80 }, 0.2, false }, SwipeCase { 4, { 0, -40 }, 0.2, false },
        SwipeCase { 4, { 0, -80 }, 1.5, false }, SwipeCase { 4, { -80, -80 }, 0.2, false },
        SwipeCase { 12, { 0, -80 }, 0.2, true }));

TEST_F(Gesture, SwipeDirectionIsTheViews)
{
    auto const turned = make<UIView>(CGRectMake(0, 100, 300, 300));
    turned->setTransform(rotation(1.5707963267948966));
    view().addSubview(turned.get());
    auto const swipe = add<UISwipeGestureRecognizer>(turned.get());
    swipe->setDirection(SwipeDirection::up);

    drag({ 100, 250 }, { 200, 250 }, 0.1);

    EXPECT_EQ(recorder().states(), (States { 3 }));
}

TEST_F(Gesture, TapsAreCounted)
{
    auto const tapTwice = add<UITapGestureRecognizer>(view());
    tapTwice->setNumberOfTapsRequired(2);
    auto const tapOnce = add<UITapGestureRecognizer>(view(), objc::selector<"other:">());
    tapOnce->requireGestureRecognizerToFail(tapTwice.get());

    tap({ 100, 100 });
    EXPECT_EQ(recorder().calls(), (Calls {}));
    advance(0.5);
    EXPECT_EQ(recorder().calls(), (Calls { "other" }));

    recorder().calls().clear();
    tap({ 100, 100 });
    advance(0.1);
    tap({ 100, 100 });
    advance(1);
    EXPECT_EQ(recorder().calls(), (Calls { "gesture" }));
}

TEST_F(Gesture, TapThatLastsOrMovesIsNone)
{
    add<UITapGestureRecognizer>(view());

    down({ 100, 100 });
    advance(1);
    up({ 100, 100 });
    drag({ 100, 100 }, { 160, 100 }, 0.1);

    EXPECT_EQ(recorder().states(), (States {}));
}

TEST_F(Gesture, PanBeginsAfterTheSlopWithoutAJump)
{
    auto const pan = add<UIPanGestureRecognizer>(view());

    down({ 100, 100 });
    move({ 110, 100 });
    EXPECT_EQ(recorder().states(), (States {}));
    move({ 125, 100 });
    EXPECT_EQ(recorder().states(), (States { 1 }));
    EXPECT_NEAR(pan->translationInView({}).x, 15, 1e-9);
    advance(0.05);
    move({ 155, 100 });
    EXPECT_NEAR(pan->translationInView(view()).x, 45, 1e-9);
    EXPECT_NEAR(pan->velocityInView(view()).x, 55 / 0.05, 1e-6);
    up({ 155, 100 });

    EXPECT_EQ(recorder().states(), (States { 1, 2, 3 }));
}

TEST_F(Gesture, DeeperRecogniserKeepsTheOuterOneFromBeginning)
{
    auto const inner = make<UIView>(CGRectMake(50, 50, 200, 200));
    view().addSubview(inner.get());
    auto const outerPan = add<UIPanGestureRecognizer>(view(), objc::selector<"other:">());
    add<UIPanGestureRecognizer>(inner.get());

    drag({ 100, 100 }, { 160, 100 }, 0.1);

    EXPECT_EQ(recorder().count("other"), 0u);
    EXPECT_GT(recorder().count("gesture"), 2u);
    EXPECT_EQ(outerPan->state(), GestureState::possible);
}

TEST_F(Gesture, StateSetByHandIsReadBackAndSendsNothing)
{
    auto const press = add<UILongPressGestureRecognizer>(view());

    press->setState(GestureState::changed);

    EXPECT_EQ(press->state(), GestureState::changed);
    EXPECT_EQ(recorder().states(), (States {}));
    // The next finger starts afresh.
    down({ 120, 120 });
    advance(0.6);
    up({ 120, 120 });
    EXPECT_EQ(recorder().states(), (States { 1, 3 }));
}

TEST_F(Gesture, TargetThatIsGoneIsNotCalled)
{
    auto const target = Recorder::make();
    auto const press = objc::adopt(UILongPressGestureRecognizer {
        UILongPressGestureRecognizer::alloc()
            .send<"initWithTarget:action:", objc::handle>(recorder(), objc::selector<"gesture:">())
            .object });
    {
        auto const gone = Recorder::make();
        press->addTarget(gone.get(), objc::selector<"gesture:">());
        EXPECT_EQ(press->targets().size(), 2u);
    }
    view().addGestureRecognizer(press.get());

    down({ 120, 120 });
    advance(0.6);
    up({ 120, 120 });

    EXPECT_EQ(press->targets().size(), 1u);
    EXPECT_EQ(recorder().states(), (States { 1, 3 }));
}

TEST_F(Gesture, RecogniserRemovedWhileHeldIsOver)
{
    auto const button = addButton();
    auto const press = add<UILongPressGestureRecognizer>(button.get());

    down({ 120, 120 });
    button->removeGestureRecognizer(press.get());
    advance(1);
    up({ 120, 120 });

    EXPECT_EQ(recorder().calls(), (Calls { "down", "upInside" }));
    EXPECT_FALSE(press->view());
}

}
}
