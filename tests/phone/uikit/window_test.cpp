#include "phone/uikit/ui_window.hpp"

#include "phone/uikit/ui_screen.hpp"
#include "tests/phone/uikit/core_fixture.hpp"

namespace phone::testing {

namespace {

struct LifeState {
    std::vector<std::string> notes;
};
struct LifeController : objc::subclass<LifeController, "TestLifeController", UIViewController> {
    using subclass::subclass;
    static objc::ref<LifeController> make()
    {
        return objc::adopt(LifeController { LifeController::alloc().send<"init", objc::handle>().object });
    }
    std::vector<std::string>& notes() const { return objc::state<LifeState>(*this).notes; }
    void viewDidLoad() const { notes().push_back("viewDidLoad"); }
    void viewWillAppear(BOOL) const { notes().push_back("viewWillAppear"); }
    void viewDidAppear(BOOL) const { notes().push_back("viewDidAppear"); }
    void viewWillDisappear(BOOL) const { notes().push_back("viewWillDisappear"); }
    void viewDidDisappear(BOOL) const { notes().push_back("viewDidDisappear"); }
};

using Notes = std::vector<std::string>;

}

class Window : public CoreTest {
protected:
    Window()
    {
        objc::define<LifeController>()
            .state<LifeState>()
            .method<"viewDidLoad", &LifeController::viewDidLoad>()
            .method<"viewWillAppear:", &LifeController::viewWillAppear>()
            .method<"viewDidAppear:", &LifeController::viewDidAppear>()
            .method<"viewWillDisappear:", &LifeController::viewWillDisappear>()
            .method<"viewDidDisappear:", &LifeController::viewDidDisappear>()
            .install();
    }
    UIViewController presenter() const { return window().rootViewController(); }
};

TEST_F(Window, StaysHiddenUntilShown)
{
    auto const other = make<UIWindow>(CGRectMake(0, 0, 390, 844));

    EXPECT_TRUE(other->isHidden());
    EXPECT_EQ(UIWindow::keyWindow(), window());
    other->makeKeyAndVisible();
    EXPECT_FALSE(other->isHidden());
    EXPECT_EQ((UIWindow::cls().send<"valueForKey:", UIWindow>("keyWindow"_ns)), other.get());
    EXPECT_FALSE(window().isKeyWindow());
    other->setHidden(true);
    EXPECT_TRUE(window().isKeyWindow());
}

TEST_F(Window, WindowsLieByLevelThenByTimeShown)
{
    auto const alert = make<UIWindow>(), a = make<UIWindow>(), b = make<UIWindow>();
    alert->setWindowLevel(UIWindowLevelAlert + 1);
    alert->setHidden(false);
    b->setHidden(false);
    a->setHidden(false);

    EXPECT_EQ(allWindows(), (std::vector<UIWindow> { window(), b, a, alert }));
}

TEST_F(Window, TheKeyWindowIsFoundByPredicate)
{
    auto const application =
        objc::adopt(UIApplication { UIApplication::alloc().send<"init", objc::handle>().object });
    auto const other = make<UIWindow>();
    auto const predicate =
        objc::cls<"NSPredicate">().send<"predicateWithFormat:", objc::handle>("isKeyWindow == YES"_ns);

    auto const found = application->windows().send<"filteredArrayUsingPredicate:", NSArray>(predicate);

    EXPECT_EQ(found.count(), 1u);
    EXPECT_EQ(found.firstObject(), window());
    forgetSharedApplication();
}

TEST_F(Window, CallsByMessageAreTraced)
{
    auto const other = make<UIWindow>(CGRectMake(0, 0, 10, 10));
    other->send<"_setSecure:">(BOOL { true });
    other->send<"setWindowLevel:">(CGFloat { 1999 });
    other->setAutorotates(false);

    Json const all = events("window");
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]["call"], "initWithFrame:");
    EXPECT_EQ(all[1]["call"], "_setSecure:");
    EXPECT_EQ(all[1]["value"], true);
    EXPECT_EQ(all[2]["value"], 1999);
    EXPECT_EQ(all[2]["window"], other->number());
    EXPECT_TRUE(other->isSecure());
}

TEST_F(Window, AControllersViewLoadsOnFirstUse)
{
    auto const controller = LifeController::make();
    EXPECT_FALSE(controller->isViewLoaded());

    EXPECT_EQ(controller->view().bounds(), CGRectMake(0, 0, 390, 844));

    EXPECT_EQ(controller->notes(), (Notes { "viewDidLoad" }));
}

TEST_F(Window, AppearanceFollowsTheWindow)
{
    auto const other = make<UIWindow>();
    auto const controller = LifeController::make();
    other->setRootViewController(controller);
    other->setHidden(false);
    other->setHidden(true);

    EXPECT_EQ(controller->notes(),
        (Notes {
            "viewDidLoad", "viewWillAppear", "viewDidAppear", "viewWillDisappear", "viewDidDisappear" }));
}

TEST_F(Window, PresentsAndDismissesInTime)
{
    auto const controller = LifeController::make();
    int presented = 0, dismissed = 0;

    presenter().present(controller, true, [&] { ++presented; });
    EXPECT_EQ(presenter().presentedViewController(), controller.get());
    EXPECT_EQ(controller->presentingViewController(), presenter());
    EXPECT_EQ(controller->next(), presenter());
    EXPECT_EQ(presented, 0);
    advance(0.5);
    EXPECT_EQ(presented, 1);
    EXPECT_EQ(controller->view().window(), window());

    controller->dismiss(true, [&] { ++dismissed; });
    EXPECT_EQ(presenter().presentedViewController(), controller.get());
    advance(0.5);
    EXPECT_EQ(dismissed, 1);
    EXPECT_FALSE(presenter().presentedViewController());
    EXPECT_FALSE(controller->view().superview());
    EXPECT_EQ(controller->notes(),
        (Notes {
            "viewDidLoad", "viewWillAppear", "viewDidAppear", "viewWillDisappear", "viewDidDisappear" }));

    Json const present = events("present");
    ASSERT_EQ(present.size(), 1u);
    EXPECT_EQ(present[0]["class"], "TestLifeController");
    EXPECT_EQ(present[0]["presenter"], "UIViewController");
    EXPECT_EQ(present[0]["window"], 0);
    EXPECT_EQ(present[0]["completion"], true);
    EXPECT_EQ(events("dismiss").size(), 1u);
}

TEST_F(Window, RefusesWhatThePlatformRefuses)
{
    auto const first = LifeController::make(), second = LifeController::make();
    auto const offscreen = LifeController::make();
    presenter().present(first, false);

    presenter().present(second, false);
    presenter().present({}, false);
    offscreen->present(second, false);
    UIViewController {}.present(second, false);
    first->present(first, false);

    EXPECT_EQ(events("present").size(), 1u);
    EXPECT_FALSE(second->presentingViewController());
    first->present(second, false);
    EXPECT_EQ(presentedControllers(window()), (std::vector<UIViewController> { first, second }));
}

TEST_F(Window, DismissingTheLowerOneTakesTheUpperOneAlong)
{
    auto const first = LifeController::make(), second = LifeController::make();
    presenter().present(first, false);
    first->present(second, false);
    clock().runLoopTurn();

    presenter().dismiss(false);
    clock().runLoopTurn();

    EXPECT_FALSE(first->presentingViewController());
    EXPECT_FALSE(second->presentingViewController());
    EXPECT_FALSE(second->view().superview());
    EXPECT_EQ(window().children().size(), 1u);
}

TEST_F(Window, TheScreenTurns)
{
    EXPECT_EQ(UIScreen::mainScreen().bounds(), CGRectMake(0, 0, 390, 844));
    setScreenOrientation(3);
    EXPECT_EQ(UIScreen::mainScreen().bounds(), CGRectMake(0, 0, 844, 390));
    setScreenOrientation(9);
    EXPECT_EQ(screenOrientation(), 3);
    setScreenOrientation(1);
    EXPECT_TRUE(UIDevice::currentDevice().systemVersion().isEqualToString("16.1"_ns));
}

TEST_F(Window, ThatFillsTheScreenTurnsWithIt)
{
    auto const small = make<UIWindow>(CGRectMake(10, 20, 100, 50));
    setScreenOrientation(4);
    EXPECT_EQ(window().frame(), CGRectMake(0, 0, 844, 390));
    EXPECT_EQ(window().rootViewController().view().frame(), CGRectMake(0, 0, 844, 390));
    EXPECT_EQ(small->frame(), CGRectMake(10, 20, 100, 50));
    setScreenOrientation(1);
    EXPECT_EQ(window().frame(), CGRectMake(0, 0, 390, 844));
}

TEST_F(Window, ThatDoesNotRotateStaysWithTheDisplay)
{
    auto const fixed = make<UIWindow>(CGRectMake(0, 0, 390, 844));
    fixed->setAutorotates(false);
    // At the display's upper edge, towards its left.
    auto const mark = make<UIView>(CGRectMake(20, 10, 60, 30));
    fixed->addSubview(mark.get());
    auto const place = [&] { return apply(fixed->transformToSuperview(), mark->frame()); };

    EXPECT_EQ(place(), CGRectMake(20, 10, 60, 30));
    setScreenOrientation(3);   // the display's upper edge is at the left, its left at the bottom
    EXPECT_EQ(place(), CGRectMake(10, 310, 30, 60));
    EXPECT_EQ(fixed->frame(), CGRectMake(0, 0, 844, 390));
    EXPECT_EQ(fixed->bounds(), CGRectMake(0, 0, 390, 844));
    setScreenOrientation(4);   // and at the right
    EXPECT_EQ(place(), CGRectMake(804, 20, 30, 60));
    setScreenOrientation(2);
    EXPECT_EQ(place(), CGRectMake(310, 804, 60, 30));
    setScreenOrientation(1);
    EXPECT_EQ(place(), CGRectMake(20, 10, 60, 30));
    EXPECT_EQ(fixed->transform(), kIdentity);
}

TEST_F(Window, StopsRotatingWhereItCoversTheSame)
{
    setScreenOrientation(3);
    auto const turned = make<UIWindow>(UIScreen::mainScreen().bounds());
    auto const controller = LifeController::make();
    turned->setRootViewController(controller.get());
    EXPECT_EQ(turned->bounds(), CGRectMake(0, 0, 844, 390));

    turned->setAutorotates(false);
    EXPECT_EQ(turned->frame(), CGRectMake(0, 0, 844, 390));
    EXPECT_EQ(turned->bounds(), CGRectMake(0, 0, 390, 844));
    EXPECT_EQ(controller->view().bounds(), CGRectMake(0, 0, 390, 844));
    turned->setAutorotates(true);
    EXPECT_EQ(turned->bounds(), CGRectMake(0, 0, 844, 390));
    EXPECT_EQ(controller->view().bounds(), CGRectMake(0, 0, 844, 390));
    setScreenOrientation(1);
    EXPECT_EQ(turned->frame(), CGRectMake(0, 0, 390, 844));
}

TEST_F(Window, OpensUrlsAndCallsBackLater)
{
    auto const application =
        objc::adopt(UIApplication { UIApplication::alloc().send<"init", objc::handle>().object });
    std::vector<std::string> opened;
    setUrlOpener(
        [&](std::string const& url) {
            opened.push_back(url);
            return true;
        },
        {});
    auto const url = objc::cls<"NSURL">().send<"URLWithString:", objc::handle>("tel:123"_ns);
    std::vector<bool> answers;
    auto completion = objc::block([&answers](BOOL success) { answers.push_back(success); });

    application->send<"openURL:options:completionHandler:">(
        url, NSDictionary::dictionary(), objc::lent(completion));
    EXPECT_TRUE(answers.empty());
    application->send<"openURL:options:completionHandler:">(
        objc::handle {}, NSDictionary {}, objc::lent(completion));
    clock().runLoopTurn();

    EXPECT_EQ(opened, (std::vector<std::string> { "tel:123" }));
    EXPECT_EQ(answers, (std::vector<bool> { true, false }));
    EXPECT_EQ(events("openURL")[0]["url"], "tel:123");
    EXPECT_TRUE(events("openURL")[1]["url"].is_null());
    EXPECT_EQ(events("completion")[0]["success"], true);
    setUrlOpener({}, {});
    forgetSharedApplication();
}

}
