#include "tests/phone/uikit/core_fixture.hpp"

namespace phone::testing {

class ViewHierarchy : public CoreTest { };

TEST_F(ViewHierarchy, TellsAViewWhereItGoes)
{
    auto const view = make<NotingView>();

    root().addSubview(view);
    view->removeFromSuperview();

    EXPECT_EQ(view->notes(),
        (std::vector<std::string> { "willMoveToSuperview", "didMoveToWindow", "didMoveToSuperview",
            "willMoveToSuperview nil", "didMoveToWindow nil", "didMoveToSuperview" }));
}

TEST_F(ViewHierarchy, KeepsTheOrderBackToFront)
{
    auto const a = addView({}), b = addView({}), c = addView({});

    root().bringSubviewToFront(a);
    EXPECT_EQ(root().children(), (std::vector<UIView> { b, c, a }));
    root().sendSubviewToBack(c);
    EXPECT_EQ(root().children(), (std::vector<UIView> { c, b, a }));
    root().insertSubviewAbove(c, b);
    EXPECT_EQ(root().children(), (std::vector<UIView> { b, c, a }));
    root().insertSubviewBelow(a, b);
    EXPECT_EQ(root().children(), (std::vector<UIView> { a, b, c }));
    root().insertSubviewAtIndex(c, 0);
    EXPECT_EQ(root().children(), (std::vector<UIView> { c, a, b }));
    root().exchangeSubviews(0, 2);
    EXPECT_EQ(root().subviews().count(), 3u);
    EXPECT_EQ(root().children(), (std::vector<UIView> { b, a, c }));
    root().addSubview(b);
    EXPECT_EQ(root().children(), (std::vector<UIView> { a, c, b }));
}

TEST_F(ViewHierarchy, RefusesCycles)
{
    auto const outer = addView({});
    auto const inner = make<UIView>();
    outer->addSubview(inner);

    inner->addSubview(outer);
    outer->addSubview(outer);
    outer->addSubview({});

    EXPECT_EQ(outer->superview(), root());
    EXPECT_EQ(inner->children().size(), 0u);
}

TEST_F(ViewHierarchy, SurvivesRemovalInACallback)
{
    auto const view = make<NotingView>();
    view->state().onDidMoveToWindow = [raw = view.get()] { raw.removeFromSuperview(); };

    root().addSubview(view);

    EXPECT_FALSE(view->superview());
    EXPECT_EQ(root().children().size(), 0u);
}

TEST_F(ViewHierarchy, ViewsLetGoOfEachOther)
{
    auto child = make<UIView>();
    {
        auto const parent = make<UIView>();
        parent->addSubview(child);
        EXPECT_EQ(child->superview(), parent.get());
    }
    EXPECT_FALSE(child->superview());
    auto const array = root().subviews();
    EXPECT_EQ(array.count(), 0u);
}

TEST_F(ViewHierarchy, RespondersFollowViewsControllersAndWindows)
{
    auto const application =
        objc::adopt(UIApplication { UIApplication::alloc().send<"init", objc::handle>().object });
    auto const view = addView({});

    EXPECT_EQ(view->next(), root());
    EXPECT_EQ(root().next(), window().rootViewController());
    EXPECT_EQ(window().rootViewController().next(), window());
    EXPECT_EQ(window().next(), application.get());
    forgetSharedApplication();
}

TEST_F(ViewHierarchy, TintComesFromAbove)
{
    auto const outer = addView({});
    auto const inner = make<NotingView>();
    outer->addSubview(inner);
    inner->notes().clear();

    outer->setTintColor(UIColor::redColor());
    EXPECT_EQ(inner->tintColor(), UIColor::redColor());
    EXPECT_EQ(inner->notes(), (std::vector<std::string> { "tintColorDidChange" }));

    inner->setTintColor(UIColor::blueColor());
    outer->setTintColor({});
    EXPECT_EQ(inner->tintColor(), UIColor::blueColor());
    EXPECT_EQ(outer->tintColor(), UIColor::systemBlueColor());
}

TEST_F(ViewHierarchy, LaysOutOnceATurn)
{
    auto const view = make<NotingView>();
    root().addSubview(view);
    layout();
    view->notes().clear();

    view->setNeedsLayout();
    view->setFrame(CGRectMake(0, 0, 10, 10));
    layout();
    EXPECT_EQ(view->notes(), (std::vector<std::string> { "layoutSubviews" }));

    view->notes().clear();
    layout();
    EXPECT_TRUE(view->notes().empty());
}

TEST_F(ViewHierarchy, AViewThatAlwaysWantsLayoutDoesNotHang)
{
    auto const view = make<NotingView>();
    root().addSubview(view);
    view->state().onLayout = [raw = view.get()] { raw.setNeedsLayout(); };

    view->layoutIfNeeded();

    EXPECT_LT(view->notes().size(), 50u);
}

TEST_F(ViewHierarchy, FindsByTag)
{
    auto const view = addView({});
    view->setTag(7);

    EXPECT_EQ(window().viewWithTag(7), view.get());
    EXPECT_FALSE(window().viewWithTag(8));
}

TEST_F(ViewHierarchy, MessagesToNilAnswerZero)
{
    UIView const none;

    EXPECT_EQ((none.send<"frame", CGRect>()), CGRect {});
    EXPECT_EQ(none.frame(), CGRect {});
    EXPECT_FALSE(none.superview());
    none.addSubview(none);
    none.setFrame(CGRectMake(1, 1, 1, 1));
    EXPECT_FALSE(none.window());
}

TEST_F(ViewHierarchy, GeometryMessagesAreObserved)
{
    std::vector<std::string> calls;
    setViewCallObserver(
        [&calls](UIView, char const* call, Json value) { calls.push_back(call + value.dump()); });

    auto const view = make<UIView>(CGRectMake(1, 2, 3, 4));
    view->send<"setHidden:">(BOOL { true });
    view->setFrame(CGRectMake(0, 0, 9, 9));

    EXPECT_EQ(
        calls, (std::vector<std::string> { "initWithFrame:{\"rect\":[1.0,2.0,3.0,4.0]}", "setHidden:true" }));
    setViewCallObserver({});
}

}
