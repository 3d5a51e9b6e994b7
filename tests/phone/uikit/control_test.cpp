#include "phone/uikit/ui_button.hpp"
#include "tests/phone/uikit/core_fixture.hpp"

namespace phone::testing {

namespace {

// A finger as a control sees it.
struct FingerState {
    CGPoint point {};   // in the root's space
};
struct Finger : objc::subclass<Finger, "TestFinger", NSObject> {
    using subclass::subclass;
    CGPoint locationInView(UIView view) const
    {
        return view.convertPointFromView(objc::state<FingerState>(*this).point, UIView {});
    }
    NSUInteger tapCount() const { return 1; }
};

struct TargetState {
    std::vector<std::string> calls;
};
struct Target : objc::subclass<Target, "TestTarget", NSObject> {
    using subclass::subclass;
    std::vector<std::string>& calls() const { return objc::state<TargetState>(*this).calls; }
    void plain() const { calls().push_back("plain"); }
    void sender(objc::handle sender) const
    {
        calls().push_back("sender " + std::string(class_getName(objc::boundary::class_of(sender.object))));
    }
    void senderEvent(objc::handle, objc::handle event) const
    {
        calls().push_back(event ? "event" : "no event");
    }
    void down() const { calls().push_back("down"); }
    void dragInside() const { calls().push_back("dragInside"); }
    void dragOutside() const { calls().push_back("dragOutside"); }
    void dragExit() const { calls().push_back("dragExit"); }
    void dragEnter() const { calls().push_back("dragEnter"); }
    void upInside() const { calls().push_back("upInside"); }
    void upOutside() const { calls().push_back("upOutside"); }
    void cancel() const { calls().push_back("cancel"); }
};

using Calls = std::vector<std::string>;

}

class Control : public CoreTest {
protected:
    Control()
    {
        objc::define<Finger>()
            .state<FingerState>()
            .method<"locationInView:", &Finger::locationInView>()
            .method<"tapCount", &Finger::tapCount>()
            .install();
        objc::define<Target>()
            .state<TargetState>()
            .method<"plain", &Target::plain>()
            .method<"sender:", &Target::sender>()
            .method<"sender:event:", &Target::senderEvent>()
            .method<"down", &Target::down>()
            .method<"dragInside", &Target::dragInside>()
            .method<"dragOutside", &Target::dragOutside>()
            .method<"dragExit", &Target::dragExit>()
            .method<"dragEnter", &Target::dragEnter>()
            .method<"upInside", &Target::upInside>()
            .method<"upOutside", &Target::upOutside>()
            .method<"cancel", &Target::cancel>()
            .install();
        m_target = objc::adopt(Target { Target::alloc().init().object });
        m_finger = objc::adopt(Finger { Finger::alloc().init().object });
        m_button = objc::retain(UIButton::buttonWithType(UIButton::cls(), 0));
        m_button->setFrame(CGRectMake(100, 100, 45, 45));
        root().addSubview(m_button);
        struct Row {
            char const* action;
            NSUInteger event;
        };
        for (Row const& row :
            { Row { "down", ControlEvent::touchDown }, Row { "dragInside", ControlEvent::touchDragInside },
                Row { "dragOutside", ControlEvent::touchDragOutside },
                Row { "dragExit", ControlEvent::touchDragExit },
                Row { "dragEnter", ControlEvent::touchDragEnter },
                Row { "upInside", ControlEvent::touchUpInside },
                Row { "upOutside", ControlEvent::touchUpOutside },
                Row { "cancel", ControlEvent::touchCancel } })
            m_button->addTarget(m_target.get(), sel_registerName(row.action), row.event);
    }

    UIButton button() const { return m_button; }
    Calls take() const { return std::exchange(m_target->calls(), {}); }
    Target target() const { return m_target; }
    objc::handle at(double x, double y)
    {
        objc::state<FingerState>(m_finger.get()).point = { x, y };
        return NSSet::setWithObject(m_finger.get());
    }
    void dropTarget() { m_target = nullptr; }

private:
    objc::ref<Target> m_target;
    objc::ref<Finger> m_finger;
    objc::ref<UIButton> m_button;
};

TEST_F(Control, SendsTouchesInOrder)
{
    button().touchesBegan(at(110, 110), {});
    EXPECT_EQ(take(), (Calls { "down" }));
    EXPECT_TRUE(button().isHighlighted());
    EXPECT_TRUE(button().isTracking());

    button().touchesMoved(at(111, 110), {});
    EXPECT_EQ(take(), (Calls { "dragInside" }));
    button().touchesMoved(at(100, 100 + 45 + 69), {});   // within the slop
    EXPECT_EQ(take(), (Calls { "dragInside" }));
    button().touchesMoved(at(100, 100 + 45 + 71), {});
    EXPECT_EQ(take(), (Calls { "dragOutside", "dragExit" }));
    EXPECT_FALSE(button().isHighlighted());
    button().touchesMoved(at(110, 110), {});
    EXPECT_EQ(take(), (Calls { "dragInside", "dragEnter" }));

    button().touchesEnded(at(110, 110), {});
    EXPECT_EQ(take(), (Calls { "upInside" }));
    EXPECT_FALSE(button().isTracking());
}

TEST_F(Control, TellsOutsideAndCancelled)
{
    button().touchesBegan(at(110, 110), {});
    button().touchesEnded(at(300, 300), {});
    EXPECT_EQ(take(), (Calls { "down", "upOutside" }));

    button().touchesBegan(at(110, 110), {});
    button().touchesCancelled(at(110, 110), {});
    button().touchesEnded(at(110, 110), {});
    EXPECT_EQ(take(), (Calls { "down", "cancel" }));
}

TEST_F(Control, ADisabledControlSendsNothing)
{
    button().setEnabled(false);

    button().touchesBegan(at(110, 110), {});
    button().touchesEnded(at(110, 110), {});

    EXPECT_EQ(take(), Calls {});
    EXPECT_EQ(button().state(), ControlState::disabled);
}

TEST_F(Control, PassesAsMuchAsTheActionTakes)
{
    auto const control = make<UIControl>();
    control->addTarget(target(), sel_registerName("plain"), 64);
    control->addTarget(target(), sel_registerName("sender:"), 64);
    control->addTarget(target(), sel_registerName("sender:event:"), 64);

    control->sendActionsForControlEvents(64);

    EXPECT_EQ(take(), (Calls { "plain", "sender UIControl", "no event" }));
}

TEST_F(Control, KnowsItsTargets)
{
    auto const control = make<UIControl>();
    control->addTarget(target(), sel_registerName("plain"), 1);
    control->addTarget(target(), sel_registerName("plain"), 64);

    EXPECT_EQ(control->actions().size(), 1u);
    EXPECT_EQ(control->allControlEvents(), 65u);
    EXPECT_EQ(control->actionsForTarget(target(), 64).count(), 1u);
    EXPECT_FALSE(control->actionsForTarget(target(), 2));

    control->removeTarget(target(), nullptr, 1);
    EXPECT_EQ(control->allControlEvents(), 64u);
    control->removeTarget({}, nullptr, ControlEvent::allEvents);
    EXPECT_TRUE(control->actions().empty());
}

TEST_F(Control, ATargetThatHasGoneGetsNothing)
{
    dropTarget();

    button().sendActionsForControlEvents(ControlEvent::touchDown);

    EXPECT_TRUE(button().actions().empty());
}

TEST_F(Control, AnUnknownActionRaises)
{
    button().addTarget(target(), sel_registerName("noSuchAction"), 2);

    EXPECT_ANY_THROW(button().sendActionsForControlEvents(2));
}

TEST_F(Control, AButtonsClassIsTheOneAsked)
{
    EXPECT_EQ(UIButton::buttonWithType(UIButton::cls(), 0).buttonType(), 0);
    EXPECT_TRUE(objc::cast<UIButton>(UIButton::buttonWithType(UIButton::cls(), 1)));
}

TEST_F(Control, AButtonFallsBackToNormal)
{
    button().setTitle("A"_ns, ControlState::normal);
    button().setTitle("S"_ns, ControlState::selected);

    EXPECT_TRUE(button().currentTitle().isEqualToString("A"_ns));
    button().setHighlighted(true);
    EXPECT_TRUE(button().currentTitle().isEqualToString("A"_ns));
    button().setHighlighted(false);
    button().setSelected(true);
    EXPECT_TRUE(button().currentTitle().isEqualToString("S"_ns));
    EXPECT_EQ(button().titlesByState().size(), 2u);
    EXPECT_EQ(button().currentTitleColor(), UIColor::whiteColor());
}

TEST_F(Control, AButtonCentresItsTitleAndCutsItsImage)
{
    button().setTitle("AB"_ns, ControlState::normal);
    button().layoutIfNeeded();
    CGRect const title = button().titleLabel().frame();
    EXPECT_NEAR(midX(title), 22.5, 0.34);
    EXPECT_NEAR(midY(title), 22.5, 0.34);

    button().setTitle({}, ControlState::normal);
    button().setImage(UIImage::of(graphics::Bitmap::withPixels(50, 50)), ControlState::normal);
    button().layoutIfNeeded();
    EXPECT_EQ(button().imageView().frame(), CGRectMake(0, 0, 45, 45));

    button().setImage(UIImage::of(graphics::Bitmap::withPixels(20, 10)), ControlState::normal);
    button().layoutIfNeeded();
    CGRect const image = button().imageView().frame();
    EXPECT_EQ(image.size, (CGSize { 20, 10 }));
    EXPECT_NEAR(midX(image), 22.5, 0.34);
}

}
