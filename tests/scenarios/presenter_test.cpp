// On what prompts and composers come up, by system version; and whom the idle timer's assertions go to.
#include "tests/scenarios/actions.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/ui_color.hpp"

#include <cstdlib>

extern "C" {
Method* class_copyMethodList(Class cls, unsigned* count);
SEL method_getName(Method method);
}

namespace phone {

namespace {

constexpr double kAlertLevel = 2000;

struct Version {
    char const* text;
    bool composersOnKeyWindow;
    bool promptsInWindow;          // of the lock screen's strip
    bool overlayPromptsInWindow;   // of the overlay's
};
constexpr Version kVersions[] {
    { "9.3", false, false, true },
    { "12.4", false, false, true },
    { "13.0", true, true, true },
    { "13.7", true, true, true },
    { "13.10", true, true, true },
    { "14.0", false, true, true },
    { "14.8", false, true, true },
    { "15.4", false, true, true },
    { "16.0", false, false, false },
    { "16.1", false, false, false },
    { "100.1", false, false, false },
};

}

class Presenters : public Story, public testing::WithParamInterface<Version> {
protected:
    static Json lastPresentation()
    {
        Json last;
        for (Json const& event : phone().trace().events())
            if (event["kind"] == "present")
                last = event;
        return last;
    }
    static std::string adjunctClass()
    {
        return isDashBoard() ? "SBDashBoardNotificationAdjunctListViewController"
                             : "CSNotificationAdjunctListViewController";
    }
    static bool isDashBoard()
    {
        std::string const version = GetParam().text;
        return version == "9.3" || version == "12.4";
    }
    static void expectPromptWindow(Json const& presentation)
    {
        EXPECT_EQ(presentation["presenter"], "UIViewController");
        EXPECT_EQ(presentation["window"], kAlertLevel + 1);
    }
    static void bootPhone(int tapCode) { boot(options(GetParam().text, { { "singleTapAction", tapCode } })); }
    // The button of the overlay's first contact.
    static UIView overlayContact()
    {
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        wait();
        for (UIView const view : visibleViews())
            if (view.send<"isKindOfClass:", BOOL>(objc::class_handle { objc_getClass("CVLButton") })
                && view.isDescendantOfView(phone().overlay()))
                return view;
        return {};
    }
    static UIWindow promptWindow()
    {
        for (UIWindow const window : phone().windows())
            if (window.windowLevel() > kAlertLevel)
                return window;
        return {};
    }
};

TEST_P(Presenters, OfPromptsOfTheLockScreensStrip)
{
    bootPhone(0);

    touch(contactButton());
    wait();

    Json const event = lastPresentation();
    EXPECT_EQ(event["animated"], true);
    EXPECT_EQ(event["completion"], false);
    if (GetParam().promptsInWindow) {
        expectPromptWindow(event);
    } else {
        EXPECT_EQ(event["presenter"], adjunctClass());
        EXPECT_FALSE(promptWindow());
    }
}

TEST_P(Presenters, OfPromptsOfTheOverlaysStrip)
{
    bootPhone(0);

    touch(overlayContact());
    wait();

    if (GetParam().overlayPromptsInWindow)
        expectPromptWindow(lastPresentation());
    else
        EXPECT_NE(lastPresentation()["window"], kAlertLevel + 1);
}

TEST_P(Presenters, OfComposers)
{
    for (int const code : { 5, 7 }) {
        if (!phone().isBooted())
            bootPhone(code);
        if (code == 5)
            touch(contactButton());
        else
            phone().strip().send<"sndEmail">();
        wait();

        Json const event = lastPresentation();
        EXPECT_EQ(event["class"],
            code == 5 ? "MFMessageComposeViewControllerCVL" : "MFMailComposeViewControllerCVL");
        EXPECT_EQ(event["animated"], true);
        EXPECT_EQ(event["completion"], true);
        if (GetParam().composersOnKeyWindow)
            EXPECT_NE(event["presenter"], adjunctClass());
        else
            EXPECT_EQ(event["presenter"], adjunctClass());
        EXPECT_FALSE(promptWindow());
        touch(button("Cancel"));
        wait();
    }
}

INSTANTIATE_TEST_SUITE_P(EverySystem, Presenters, testing::ValuesIn(kVersions),
    [](auto const& info) { return versionName(info.param.text); });

class PromptWindow : public Presenters {
protected:
    // The plug-in's, with their values.
    static std::vector<std::string> windowCalls(std::size_t since)
    {
        std::vector<std::string> calls;
        for (Json const& event : phone().trace().events(since))
            if (event["kind"] == "window" && !event.contains("own"))
                calls.push_back(event["call"].get<std::string>() + " " + event["value"].dump());
        return calls;
    }
};

TEST_P(PromptWindow, IsMadeStepByStep)
{
    bootPhone(0);
    std::size_t const before = phone().trace().count();
    touch(contactButton());
    wait();

    std::vector<std::string> const calls = windowCalls(before);
    ASSERT_GE(calls.size(), 6u);
    EXPECT_EQ(calls[0], R"(initWithFrame: {"rect":[0.0,0.0,390.0,844.0]})");
    EXPECT_TRUE(calls[1].starts_with("setRootViewController: ")) << calls[1];
    EXPECT_EQ(calls[2], "setWindowLevel: 2001.0");
    EXPECT_EQ(calls[3], "setHidden: false");
    EXPECT_EQ(calls[4], "_setSecure: true");
    EXPECT_TRUE(calls[5].starts_with("setTintColor: ")) << calls[5];
    EXPECT_EQ(calls.size(), 6u) << testing::PrintToString(calls);

    // Nobody hides it: it goes by itself.
    touch(alertRow("No"));
    wait();
    EXPECT_EQ(windowCalls(before), calls);
}

TEST_P(PromptWindow, TakesTheKeyWindowsTintAndGoesWithItsPrompt)
{
    bootPhone(0);
    UIColor const tint = UIColor::colorWithRed(0.2, 0.4, 0.6, 1);
    springBoard().coverSheetWindow->setTintColor(tint);

    touch(contactButton());
    wait();
    ASSERT_TRUE(promptWindow());
    EXPECT_TRUE(promptWindow().tintColor().isEqual(tint));
    EXPECT_FALSE(promptWindow().isHidden());

    touch(alertRow("No"));
    wait();
    EXPECT_FALSE(promptWindow());
}

TEST_P(PromptWindow, HasNoTintWhereNoWindowIsKey)
{
    bootPhone(0);
    while (UIWindow const key = UIWindow::keyWindow())
        key.resignKeyWindow();
    std::size_t const before = phone().trace().count();

    touch(contactButton());
    wait();

    EXPECT_EQ(windowCalls(before).back(), "setTintColor: null");
    EXPECT_TRUE(alertRow("No"));
}

TEST_P(PromptWindow, IsShownOnASystemThatDoesNotTellItsKeyWindow)
{
    auto options = Story::options(GetParam().text, { { "singleTapAction", 0 } });
    options.absent = { "UIWindow keyWindow" };
    boot(options);
    std::size_t const before = phone().trace().count();

    touch(contactButton());
    wait();

    EXPECT_EQ(windowCalls(before).back(), "setTintColor: null");
    EXPECT_TRUE(alertRow("No"));
}

INSTANTIATE_TEST_SUITE_P(Systems, PromptWindow, testing::Values(kVersions[3], kVersions[7]),
    [](auto const& info) { return versionName(info.param.text); });

class Composers : public Story {
protected:
    static Effects tapped()
    {
        touch(contactButton());
        wait();
        return effects();
    }
};

// The screen is kept awake and the contact forgotten all the same.
TEST_F(Composers, AreNotShownWhereTheKeyWindowHasToShowThemAndNoneIs)
{
    boot(options("13.7", { { "singleTapAction", 5 } }));
    while (UIWindow const key = UIWindow::keyWindow())
        key.resignKeyWindow();

    Effects expected = actionOfTap(5).atOnce;
    expected.pop_back();   // what is presented
    EXPECT_EQ(tapped(), Effects({ "sound 1519", "passcodeTest no" }) + expected);
    EXPECT_TRUE(phone().idleTimer().holds("CVL"));
    phone().strip().send<"msgWA">();
    wait();
    EXPECT_EQ(only(effects(), { "openURL" }), Effects { "openURL whatsapp://send?phone=" });
}

TEST_F(Composers, OfMailAreNotShownWhereTheKeyWindowHasToShowThemAndNoneIs)
{
    boot(options("13.7", { { "singleTapAction", 7 } }));
    while (UIWindow const key = UIWindow::keyWindow())
        key.resignKeyWindow();

    Effects expected = actionOfTap(7).atOnce;
    expected.pop_back();   // what is presented
    EXPECT_EQ(tapped(), Effects({ "sound 1519", "passcodeTest no" }) + expected);
    EXPECT_TRUE(phone().idleTimer().holds("CVL"));
    phone().strip().send<"sndEmail">();
    EXPECT_EQ(only(effects(), { "MFMailComposeViewControllerCVL" }).back(),
        R"(MFMailComposeViewControllerCVL setToRecipients:([""]))");
}

// Whom the strip belongs to is looked at each time.
TEST_F(Composers, AndPromptsAreShownByTheControllerThatHasTheStripNow)
{
    boot(options("16.1", { { "singleTapAction", 5 } }));
    EXPECT_EQ(tapped().back(), "present MFMessageComposeViewControllerCVL");
    touch(button("Cancel"));
    wait();
    UIView const strip = phone().strip();
    UIViewController const home = phone().windows().front().rootViewController();
    home.view().addSubview(strip);

    for (int i = 0; i < 2; ++i) {
        AutoreleasePool const pool;
        std::size_t const before = phone().trace().count();
        if (i == 0)
            strip.send<"msgSMS">();
        else
            strip.send<"callPhone">();
        std::string presenter;
        for (Json const& event : phone().trace().events(before))
            if (event["kind"] == "present")
                presenter = event["presenter"];
        EXPECT_EQ(presenter, classNameOf(home));
        home.presentedViewController().dismiss(false);
        wait();
    }
}

TEST_F(Composers, DifferFromTheSystemsInOneAnswer)
{
    boot(options("15.4"));
    for (std::string const name : { "MFMessageComposeViewController", "MFMailComposeViewController" }) {
        Class const cls = objc_getClass((name + "CVL").c_str());
        ASSERT_TRUE(cls) << name;
        EXPECT_EQ(class_getName(class_getSuperclass(cls)), name);
        unsigned count = 0;
        Method* const methods = class_copyMethodList(cls, &count);
        ASSERT_EQ(count, 1u) << name;
        EXPECT_STREQ(sel_getName(method_getName(methods[0])), "_canShowWhileLocked");
        std::free(methods);

        objc::class_handle const composers { cls };
        auto const composer = objc::adopt(composers.send<"new", UIViewController>());
        EXPECT_TRUE((composer->send<"_canShowWhileLocked", BOOL>()));
        auto const plain =
            objc::adopt(objc::class_handle { class_getSuperclass(cls) }.send<"new", UIViewController>());
        EXPECT_FALSE((plain->send<"_canShowWhileLocked", BOOL>()));
    }
}

// Which object keeps the screen awake.
class Assertions : public Story, public testing::WithParamInterface<CoverSheetAnswer> {
protected:
    static std::vector<std::string> providers()
    {
        std::vector<std::string> keys;
        for (Json const& event : phone().trace().events())
            if (event["kind"] == "assertion")
                keys.push_back(event["provider"]);
        return keys;
    }
};

TEST_P(Assertions, GoWhereTheManagerSays)
{
    auto options = Story::options("15.4", { { "singleTapAction", 5 } });
    options.coverSheet = GetParam();
    boot(options);
    phone().trace().reset();
    forget();

    touch(contactButton());
    wait();

    EXPECT_TRUE(presented("MFMessageComposeViewController"));
    switch (GetParam()) {
    case CoverSheetAnswer::dashBoard:
    case CoverSheetAnswer::both:
        EXPECT_EQ(providers(), std::vector<std::string> { "_idleTimerProvider" });
        break;
    case CoverSheetAnswer::coverSheet:
        EXPECT_EQ(providers(), std::vector<std::string> { "_dashBoardIdleTimerProvider" });
        break;
    case CoverSheetAnswer::neither: EXPECT_TRUE(providers().empty()); break;
    }
}

INSTANTIATE_TEST_SUITE_P(Answers, Assertions,
    testing::Values(CoverSheetAnswer::dashBoard, CoverSheetAnswer::coverSheet, CoverSheetAnswer::both,
        CoverSheetAnswer::neither),
    [](auto const& info) { return "Answer" + std::to_string(static_cast<int>(info.param)); });

}
