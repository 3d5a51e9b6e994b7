// How the overlay strip is made, shown and put away: the calls in their order, and what each showing takes from the settings.
#include "phone/foundation/strings.hpp"
#include "phone/uikit/ui_color.hpp"
#include "phone/uikit/ui_visual_effect_view.hpp"
#include "tests/plugin/overlay/overlay_fixture.hpp"

#include "phone/springboard/substrate.hpp"

#include <algorithm>

namespace phone {

namespace {

// Messages to a strip, recorded as they arrive and then carried out.
template <objc::fixed_string Selector, class... A>
struct Heard {
    static inline void (*previous)(id, SEL, A...);
    static void implementation(id self, SEL cmd, A... arguments)
    {
        if (!UIView { self }.ask<"isViewNonLS", BOOL>())
            return previous(self, cmd, arguments...);
        Json const values = Json::array({ valueOf(arguments)... });
        deviceTrace().record("heard",
            { { "line", std::string(sel_getName(cmd)) + (values.empty() ? "" : ' ' + values[0].dump()) } });
        previous(self, cmd, arguments...);
    }
    static Json valueOf(double number) { return number; }
    static Json valueOf(int flag) { return (flag & 0xff) != 0; }
    static Json valueOf(id object) { return classNameOf(objc::handle { object }); }
    static void install()
    {
        IMP former = nullptr;
        MSHookMessageEx(objc_getClass("CVLView"), objc::selector<Selector>(),
            objc::boundary::any_function(&implementation), &former);
        previous = objc::boundary::function_cast<void(id, SEL, A...)>(former);
    }
};

}

class OverlayShowing : public OverlayTest {
protected:
    static void listen()
    {
        Heard<"rotateView">::install();
        Heard<"makeBannerGone">::install();
        Heard<"addGestureRecognizer:", id>::install();
        Heard<"setBlurrEffectAlphaNonLS:", double>::install();
        Heard<"setBlurrEffectColorNonLS:", id>::install();
        Heard<"setIsShown:", int>::install();
        Heard<"didMoveToSuperview">::install();
    }
    // What the plug-in did from then on: messages, window calls, files read, animations.
    static Lines story(std::size_t since)
    {
        Lines lines;
        for (Json const& event : phone().trace().events(since)) {
            std::string const kind = event["kind"];
            if (event.contains("own"))
                continue;
            if (kind == "heard")
                lines.push_back(event["line"]);
            else if (kind == "window")
                lines.push_back("window " + event["call"].get<std::string>() + ' ' + event["value"].dump());
            else if (kind == "read")
                lines.push_back("read " + event["path"].get<std::string>());
            else if (kind == "animate")
                lines.push_back("animate " + event["duration"].dump() + ' ' + event["delay"].dump() + ' '
                    + event["options"].dump() + ' ' + event["completion"].dump());
        }
        return lines;
    }
    static UIView card() { return viewsOfClass(phone().overlay(), "UIVisualEffectView").at(0); }
    static bool isShown(UIView strip) { return strip.send<"isShown", BOOL>(); }
};

TEST_F(OverlayShowing, MakesItsWindowReadsTheListAndComesIn)
{
    boot(options("15.4", { { "mainViewColorNonLS", "#ff0000" } }));
    listen();
    std::size_t const before = phone().trace().count();

    gesture();

    std::string const list = std::string("read ") + kContactListFile;
    Lines const lines = story(before);
    Lines const window { "window initWithFrame: {\"rect\":[0.0,0.0,390.0,844.0]}",
        "window setRootViewController: {\"class\":\"UIViewController\"}", "window setWindowLevel: 1999.0",
        "window setHidden: true", "window _setSecure: true", "window setUserInteractionEnabled: true",
        "window makeKeyAndVisible null", "window setAutorotates: false", "window setAutorotates: false",
        "window setAutorotates: true", "window setAutorotates: false",
        "window setUserInteractionEnabled: true" };
    ASSERT_GE(lines.size(), window.size());
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + std::ptrdiff_t(window.size())), window);
    Lines rest(lines.begin() + std::ptrdiff_t(window.size()), lines.end());
    // The host counts the entries, and the strip reads them for itself. Its own picture files follow.
    ASSERT_GE(rest.size(), 2u);
    EXPECT_EQ(rest[0], list);
    EXPECT_EQ(rest[1], list);
    std::erase_if(rest, [](std::string const& each) { return each.starts_with("read "); });
    EXPECT_EQ(rest,
        (Lines { "addGestureRecognizer: \"UISwipeGestureRecognizer\"", "setBlurrEffectAlphaNonLS: 1.0",
            "setBlurrEffectColorNonLS: \"UIColor\"", "animate 0.3 0.0 3 false", "setIsShown: true",
            "didMoveToSuperview" }));
}

class OverlayShowingTurned : public OverlayShowing, public testing::WithParamInterface<int> { };

TEST_P(OverlayShowingTurned, TurnsAtOnce)
{
    boot(options("15.4"));
    turn(GetParam());
    listen();
    std::size_t const before = phone().trace().count();

    gesture();

    Lines lines = story(before);
    std::erase_if(lines,
        [](std::string const& each) { return each.starts_with("read ") || each.starts_with("window "); });
    EXPECT_EQ(lines,
        (Lines { "rotateView", "animate 0.3 0.0 0 false",
            "addGestureRecognizer: \"UISwipeGestureRecognizer\"", "setBlurrEffectAlphaNonLS: 1.0",
            "setBlurrEffectColorNonLS: \"nil\"", "animate 0.3 0.0 3 false", "setIsShown: true",
            "didMoveToSuperview" }));
}

INSTANTIATE_TEST_SUITE_P(Orientations, OverlayShowingTurned, testing::Values(2, 3, 4));

TEST_F(OverlayShowing, ComesBackWithoutBeingMadeAnew)
{
    boot(options("15.4"));
    summon();
    UIView const strip = phone().overlay();
    UIWindow const window = overlayWindow();
    listen();

    std::size_t away = phone().trace().count();
    gesture();
    EXPECT_EQ(story(away), (Lines { "makeBannerGone", "animate 0.2 0.0 0 true", "setIsShown: false" }));
    wait(1);
    EXPECT_FALSE(isOverlayOnScreen());
    away = phone().trace().count();
    gesture();

    EXPECT_EQ(story(away),
        (Lines { "setBlurrEffectAlphaNonLS: 1.0", "setBlurrEffectColorNonLS: \"nil\"",
            "animate 0.3 0.0 3 false", "setIsShown: true", "didMoveToSuperview" }));
    EXPECT_EQ(phone().overlay(), strip);
    EXPECT_EQ(overlayWindow(), window);
    EXPECT_EQ(viewsOfClass(strip, "CVLContactCell").size(), 3u);
}

TEST_F(OverlayShowing, MakesAWindowAtEachGestureWhileThereIsNobodyToShow)
{
    boot(options("15.4", Json::object(), 0));
    gesture();
    UIWindow const first = overlayWindow();
    ASSERT_TRUE(first);
    int const firstNumber = first.number();
    EXPECT_FALSE(first.isHidden());
    EXPECT_TRUE(first.rootViewController().view().children().empty());
    EXPECT_FALSE(isOverlayOnScreen());
    gesture();
    EXPECT_GT(overlayWindow().number(), firstNumber);
    std::size_t windows = 0;
    for (UIWindow const window : phone().windows())
        windows += className(window) == "BAContainingWindow";
    EXPECT_EQ(windows, 1u);

    // The list is read at each gesture until a strip is made.
    putContacts(2);
    summon();
    ASSERT_TRUE(isOverlayOnScreen());
    EXPECT_EQ(phone().overlay().frame().size.width, 148);
}

TEST_F(OverlayShowing, ReadsItsListOnce)
{
    boot(options("15.4", Json::object(), 2));
    summon();
    putContacts(5);
    gesture();
    wait(1);
    summon();

    EXPECT_EQ(viewsOfClass(phone().overlay(), "CVLContactCell").size(), 2u);
    EXPECT_EQ(phone().overlay().frame().size.width, 148);
}

TEST_F(OverlayShowing, TakesAlphaAndColourFromTheSettingsEachTime)
{
    boot(options(
        "15.4", { { "viewAlphaLS", 0.25 }, { "mainViewColorNonLS", "#0000ff" }, { "viewAlpha", 0.5 } }));
    summon();
    EXPECT_EQ(card().alpha(), 0.25);
    EXPECT_EQ(card().backgroundColor().rgba(), (graphics::Color { 0, 0, 1, 0.1 }));

    struct Row {
        double alpha, shown;
    };
    for (Row const row : { Row { 0, 0 }, Row { -1, 1 }, Row { 0.75, 0.75 } }) {
        gesture();
        wait(1);
        ASSERT_TRUE(phone().changeSettings(
            { { "viewAlphaLS", row.alpha }, { "mainViewColorNonLS", "#00ff00" } }, {}));
        summon();
        EXPECT_EQ(card().alpha(), row.shown);
        EXPECT_EQ(card().backgroundColor().rgba(), (graphics::Color { 0, 1, 0, 0.1 }));
    }
}

// One number alone means that none is set.
TEST_F(OverlayShowing, TakesEveryOtherAlphaAsItIs)
{
    boot(options("15.4", { { "viewAlphaLS", -0.5 } }));
    listen();
    std::size_t const before = phone().trace().count();
    gesture();

    Lines const lines = story(before);
    EXPECT_EQ(std::ranges::count(lines, "setBlurrEffectAlphaNonLS: -0.5"), 1)
        << testing::PrintToString(lines);
}

// Nothing has turned the strip; it comes in across the middle of the edge all the same.
TEST_F(OverlayShowing, ComesInAsThePhoneLiesThoughNobodyToldOfTheTurn)
{
    boot(options("15.4"));
    summon();
    UIView const strip = phone().overlay();
    gesture();
    wait(1);
    turn(3, { .screenChanged = false, .windowRotated = false });
    summon();
    EXPECT_EQ(strip.frame(), CGRectMake(390 - 98, 844 / 2.0 - 44, 222, 88));

    gesture();
    wait(1);
    turn(1, { .screenChanged = false, .windowRotated = false });
    summon();
    EXPECT_EQ(strip.frame(), CGRectMake(390 / 2.0 - 111, 40, 222, 88));
}

TEST_F(OverlayShowing, IsTurnedAlsoWhileItIsAway)
{
    boot(options("15.4"));
    summon();
    UIView const strip = phone().overlay();
    gesture();
    wait(1);
    turn(3);
    summon();
    CGRect const frame = strip.frame();
    EXPECT_NEAR(frame.origin.x, 390 - 98, 1e-9);
    EXPECT_NEAR(frame.origin.y, 844 / 2.0 - 111, 1e-9);
    EXPECT_NEAR(frame.size.width, 88, 1e-9);
    EXPECT_NEAR(frame.size.height, 222, 1e-9);
}

TEST_F(OverlayShowing, HasACardWhateverTheStyle)
{
    boot(options("15.4", { { "bannerStyle", 0 } }));
    summon();
    ASSERT_TRUE(phone().overlay());
    EXPECT_EQ(card().frame(), CGRectMake(0, 0, 222, 88));
}

TEST_F(OverlayShowing, WinsOverADismissalThatIsStillRunning)
{
    boot(options("15.4"));
    summon();
    UIView const strip = phone().overlay();
    CGRect const place = strip.frame();

    gesture();
    wait(0.1);
    gesture();
    wait(1);

    EXPECT_TRUE(strip.superview());
    EXPECT_EQ(strip.frame(), place);
    EXPECT_TRUE(isShown(strip));
    // A dismissal after that is a dismissal again.
    gesture();
    wait(0.25);
    EXPECT_FALSE(strip.superview());
}

TEST_F(OverlayShowing, IsDismissedWhileItIsStillComing)
{
    boot(options("15.4"));
    gesture();
    wait(0.1);
    gesture();
    EXPECT_FALSE(isShown(phone().overlay()));
    wait(0.25);
    EXPECT_FALSE(isOverlayOnScreen());
}

TEST_F(OverlayShowing, CountsAsShownAfterAnActionPutItAway)
{
    bootWithApplication(options("15.4", { { "askBeforeCall", false }, { "singleTapAction", 0 } }));
    summon();
    UIView const strip = phone().overlay();
    phone().tap(middleOnScreen(contactButton(strip)));
    wait(1);
    ASSERT_FALSE(strip.superview());
    ASSERT_FALSE(events("openURL").empty());
    EXPECT_TRUE(isShown(strip));

    // The next gesture swipes up what is away already; the one after it shows.
    gesture();
    wait(1);
    EXPECT_FALSE(strip.superview());
    EXPECT_FALSE(isShown(strip));
    gesture();
    wait(1);
    EXPECT_TRUE(strip.superview());
}

TEST_F(OverlayShowing, GoesWithTheLockScreen)
{
    boot(options("15.4"));
    summon();
    ASSERT_TRUE(isOverlayOnScreen());

    phone().requestUnlock();
    wait(1);

    EXPECT_FALSE(phone().isLocked());
    EXPECT_FALSE(isOverlayOnScreen());
}

TEST_F(OverlayShowing, SwipesUpNothingBeforeTheFirstShowing)
{
    boot(options("15.4"));
    std::size_t const before = phone().trace().count();
    phone().adjunctController().send<"cvlViewSwipeUp">();
    wait(1);
    EXPECT_TRUE(events("animate", before).empty());
}

TEST_F(OverlayShowing, SlidesInAndOut)
{
    boot(options("15.4"));
    gesture();
    UIView const strip = phone().overlay();
    auto const drawnTop = [strip] { return strip.presentation().center.y - 44; };
    EXPECT_NEAR(drawnTop(), -100, 1e-6);
    wait(0.15);
    EXPECT_NEAR(drawnTop(), -30, 8);
    wait(0.2);
    EXPECT_EQ(drawnTop(), 40);

    gesture();
    wait(0.1);
    EXPECT_NEAR(drawnTop(), -30, 16);
    EXPECT_TRUE(strip.superview());
}

}
