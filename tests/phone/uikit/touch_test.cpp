#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"
#include "tests/phone/uikit/uikit_fixture.hpp"

namespace phone::testing {
namespace {

class Touch : public UIKitTest {
protected:
    objc::ref<UIButton> addButton(UIView superview, CGRect frame)
    {
        auto const button = make<UIButton>(frame);
        button->addTarget(recorder(), objc::selector<"down:">(), ControlEvent::touchDown);
        button->addTarget(recorder(), objc::selector<"upInside:">(), ControlEvent::touchUpInside);
        button->addTarget(recorder(), objc::selector<"upOutside:">(), ControlEvent::touchUpOutside);
        button->addTarget(recorder(), objc::selector<"cancelled:">(), ControlEvent::touchCancel);
        superview.addSubview(button.get());
        return button;
    }
    Recorder recorder()
    {
        if (!m_recorder)
            m_recorder = Recorder::make();
        return m_recorder;
    }

private:
    objc::ref<Recorder> m_recorder;
};

TEST_F(Touch, PressesAButton)
{
    auto const button = addButton(window(), CGRectMake(100, 100, 45, 45));

    down({ 120, 120 });
    EXPECT_EQ(recorder().calls(), (Calls { "down" }));
    EXPECT_TRUE(button->isHighlighted());
    up({ 120, 120 });

    EXPECT_EQ(recorder().calls(), (Calls { "down", "upInside" }));
    EXPECT_FALSE(button->isHighlighted());
}

TEST_F(Touch, LiftedFarAwayIsOutside)
{
    addButton(window(), CGRectMake(100, 100, 45, 45));

    drag({ 120, 120 }, { 120, 400 }, 0.2);

    EXPECT_EQ(recorder().calls(), (Calls { "down", "upOutside" }));
}

TEST_F(Touch, TakenOverBySystemCancelsTheButton)
{
    addButton(window(), CGRectMake(100, 100, 45, 45));

    down({ 120, 120 });
    touchDelivery().cancelAll();
    up({ 120, 120 });

    EXPECT_EQ(recorder().calls(), (Calls { "down", "cancelled" }));
    EXPECT_FALSE(touchDelivery().isDown());
}

TEST_F(Touch, GoesToTheFrontWindowThatTakesIt)
{
    addButton(window(), CGRectMake(100, 100, 45, 45));
    auto const front = make<UIWindow>(CGRectMake(0, 0, 375, 667));
    front->setWindowLevel(UIWindowLevelAlert);
    front->setHidden(false);

    tap({ 120, 120 });
    EXPECT_EQ(recorder().calls(), (Calls {}));

    front->setUserInteractionEnabled(false);
    tap({ 120, 120 });
    EXPECT_EQ(recorder().calls(), (Calls { "down", "upInside" }));
}

TEST_F(Touch, PassesHiddenTransparentAndDisabledViews)
{
    addButton(window(), CGRectMake(100, 100, 45, 45));
    auto const cover = make<UIView>(CGRectMake(0, 0, 375, 667));
    window().addSubview(cover.get());

    tap({ 120, 120 });
    EXPECT_EQ(recorder().count("upInside"), 0u);
    cover->setAlpha(0.005);
    tap({ 120, 120 });
    EXPECT_EQ(recorder().count("upInside"), 1u);
    cover->setAlpha(1);
    cover->setHidden(true);
    tap({ 120, 120 });
    EXPECT_EQ(recorder().count("upInside"), 2u);
    cover->setHidden(false);
    cover->setUserInteractionEnabled(false);
    tap({ 120, 120 });
    EXPECT_EQ(recorder().count("upInside"), 3u);
}

TEST_F(Touch, ReachesMirroredAndTurnedViews)
{
    auto const mirror = make<UIView>(CGRectMake(0, 0, 375, 80));
    mirror->setTransform(scaling(-1, 1));
    window().addSubview(mirror.get());
    auto const button = addButton(mirror.get(), CGRectMake(10, 0, 45, 45));
    auto const turned = make<UIView>(CGRectMake(100, 300, 100, 40));
    turned->setTransform(rotation(1.5707963267948966));
    window().addSubview(turned.get());
    addButton(turned.get(), CGRectMake(0, 0, 20, 40));

    tap({ 340, 20 });
    EXPECT_EQ(recorder().count("upInside"), 1u);
    tap({ 30, 20 });
    EXPECT_EQ(recorder().count("upInside"), 1u);
    // Turned by a quarter, the view's left end is on top: around (150, 275).
    tap({ 150, 275 });
    EXPECT_EQ(recorder().count("upInside"), 2u);
    tap({ 105, 320 });
    EXPECT_EQ(recorder().count("upInside"), 2u);

    down({ 340, 20 });
    UIView const hit = touchDelivery().hitTest({ 340, 20 });
    EXPECT_TRUE(hit == button.get());
    touchDelivery().cancelAll();
}

TEST_F(Touch, SecondFingerOnOneButtonChangesNothing)
{
    addButton(window(), CGRectMake(100, 100, 45, 45));

    down({ 110, 120 }, 0);
    down({ 130, 120 }, 1);
    up({ 130, 120 }, 1);
    up({ 110, 120 }, 0);

    EXPECT_EQ(recorder().calls(), (Calls { "down", "upInside" }));
}

TEST_F(Touch, OfNobodyDoesNothing)
{
    up({ 10, 10 });
    move({ 10, 10 });
    window().setHidden(true);
    tap({ 10, 10 });

    EXPECT_FALSE(touchDelivery().isDown());
}

TEST_F(Touch, SurvivesAButtonThatIsRemovedMeanwhile)
{
    {
        auto const button = addButton(window(), CGRectMake(100, 100, 45, 45));
        down({ 120, 120 });
        button->removeFromSuperview();
    }

    up({ 120, 120 });

    EXPECT_EQ(recorder().count("down"), 1u);
}

}
}
