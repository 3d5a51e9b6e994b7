// The strip's place in the lock screen's list: how it gets there, stays there, and follows the settings.
#include "objc/hook.hpp"
#include "phone/springboard/adjunct_list.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/substrate.hpp"
#include "tests/plugin/host/message_log.hpp"

#include <algorithm>

namespace phone {

namespace {

using Lines = std::vector<std::string>;

constexpr char const* kVersions[] { "12.4", "13.7", "16.1" };

UIStackView stackOf(UIViewController controller) { return adjunctStack(controller); }

Lines arranged(UIViewController controller)
{
    Lines names;
    for (UIView const view : stackOf(controller).arranged())
        names.push_back(class_getName(objc::boundary::class_of(view.object)));
    return names;
}

}

class LockScreenStrip : public CorvelTest {
protected:
    static UIViewController host() { return phone().adjunctController(); }

    // Constraints on the strip as a whole, in the order in which they became active.
    static Lines constraints(std::size_t since = 0)
    {
        Lines lines = told("constraint", "what", since);
        std::erase_if(lines, [](std::string const& each) { return !each.starts_with("CVLView."); });
        return lines;
    }
    // What was done to the strip in a list, with the index that it had or got.
    static Lines placements(std::size_t since = 0)
    {
        Lines lines;
        for (Json const& event : events("stack", since))
            if (event["view"] == "CVLView")
                lines.push_back(event["call"].get<std::string>()
                    + (event["index"].is_null() ? "" : ' ' + event["index"].dump()));
        return lines;
    }
    static Lines observed(std::size_t since = 0)
    {
        Lines lines;
        for (Json const& each : events("observe", since)) {
            auto const text = [&](char const* key) {
                return each[key].is_string() ? each[key].get<std::string>() : each[key].dump();
            };
            lines.push_back(text("center") + ' ' + text("name") + ' ' + text("behaviour") + ' '
                + text("observer") + ' ' + text("selector") + ' ' + text("object"));
        }
        std::erase_if(lines, [](std::string const& each) {
            return each.find("orvane.corvel") == std::string::npos
                && each.find("screenchanged") == std::string::npos
                && each.find("DidRotate") == std::string::npos;
        });
        std::erase(lines, "darwin com.orvane.corvelpref.settingschanged 2 null null null");
        return lines;
    }
    static objc::ref<UIViewController> anotherController()
    {
        auto controller = makeAdjunctListController(springBoard().family);
        controller->view();
        return controller;
    }
    // What happened to the strip and to its controller, a line a step, but for what SpringBoard itself arranged.
    static Lines steps(std::size_t since)
    {
        Lines lines;
        for (Json const& event : phone().trace().events(since)) {
            std::string const kind = event["kind"];
            if (kind == "previous" || kind == "sent")
                lines.push_back(kind + ' ' + event["selector"].get<std::string>());
            else if (kind == "observe")
                lines.push_back("observe " + event["name"].get<std::string>());
            else if (kind == "frame")
                lines.push_back(event["call"].get<std::string>() + ' ' + event["value"].dump());
            else if (kind == "stack" && event["view"] == "CVLView")
                lines.push_back(event["call"].get<std::string>() + ' ' + event["index"].dump());
            else if (kind == "constraint" && event["what"].get<std::string>().starts_with("CVLView."))
                lines.push_back(event["what"]);
        }
        return lines;
    }
    // The controller's initFirstPreferences is noted, as `sent`, and fills nothing.
    static void noteFirstPreferences()
    {
        MSHookMessageEx(objc_getClass(className(host()).c_str()), sel_registerName("initFirstPreferences"),
            objc::boundary::any_function(&note), nullptr);
    }
    static void note(id, SEL cmd)
    {
        deviceTrace().record("sent", Json::object({ { "selector", sel_getName(cmd) } }));
    }
    static void switchOff() { ASSERT_TRUE(phone().changeSettings({ { "isEnabled", false } }, {})); }
    static void switchOn() { ASSERT_TRUE(phone().changeSettings({ { "isEnabled", true } }, {})); }
};

class LockScreenStripOn : public LockScreenStrip, public testing::WithParamInterface<char const*> { };

TEST_P(LockScreenStripOn, IsPinnedInTheListBelowWhatIsThere)
{
    boot(options(GetParam()));

    EXPECT_EQ(arranged(host()), Lines { "CVLView" });
    EXPECT_EQ(placements(), Lines { "addArrangedSubview: 0" });
    EXPECT_EQ(constraints(),
        (Lines { "CVLView.centerX == UIStackView.centerX + 0", "CVLView.leading == UIStackView.leading + 10",
            "CVLView.trailing == UIStackView.trailing - 10", "CVLView.height == 90" }));
    EXPECT_FALSE((phone().strip().send<"translatesAutoresizingMaskIntoConstraints", BOOL>()));
    EXPECT_FALSE(phone().strip().isHidden());
    layoutWindowsIfNeeded();
    EXPECT_EQ(phone().strip().frame(), CGRectMake(10, 0, 370, 90));
}

TEST_P(LockScreenStripOn, ObservesInOrderWhenItIsMade)
{
    boot(options(GetParam()));

    std::string const list = className(host());
    EXPECT_EQ(observed(),
        (Lines { "default com.orvane.corvelNONLS null " + list + " activatorNONLS null",
            "darwin com.apple.springboard.screenchanged 4 null null null",
            "local UIWindowDidRotateNotification 2 null null null",
            "default com.orvane.corvelLS null " + list + " activatorLS null" }));
}

TEST_P(LockScreenStripOn, StaysLastWhateverComesIntoTheList)
{
    boot(options(GetParam()));
    std::size_t const before = phone().trace().count();

    phone().setMusicPlaying(true);

    ASSERT_EQ(arranged(host()).size(), 2u);
    EXPECT_EQ(arranged(host()).back(), "CVLView");
    // Once for the update that an insertion causes, once for the insertion itself.
    EXPECT_EQ(placements(before),
        (Lines { "removeArrangedSubview: 0", "addArrangedSubview: 1", "removeArrangedSubview: 1",
            "addArrangedSubview: 1" }));
    layoutWindowsIfNeeded();
    EXPECT_EQ(phone().strip().frame().size, (CGSize { 370, 90 }));
}

TEST_P(LockScreenStripOn, IsMadeStepByStep)
{
    boot(options(GetParam(), { { "isEnabled", false }, { "hideLSView", true } }));
    noteFirstPreferences();
    std::size_t const off = phone().trace().count();
    host().send<"viewDidLoad">();
    EXPECT_EQ(steps(off), Lines { "previous viewDidLoad" });
    switchOn();

    std::size_t const first = phone().trace().count();
    auto const controller = anotherController();
    EXPECT_EQ(steps(first),
        (Lines { "previous viewDidLoad", "sent initFirstPreferences", "observe com.orvane.corvelNONLS",
            "observe com.apple.springboard.screenchanged", "observe UIWindowDidRotateNotification",
            R"(initWithFrame: {"rect":[0.0,27.0,335.0,80.0]})", "setHidden: true",
            "observe com.orvane.corvelLS", "addArrangedSubview: 0",
            "CVLView.centerX == UIStackView.centerX + 0", "CVLView.leading == UIStackView.leading + 10",
            "CVLView.trailing == UIStackView.trailing - 10", "CVLView.height == 90" }));
    // Made from the record, which is empty here.
    for (UIView const child : phone().strip().children())
        EXPECT_EQ(className(child), "UICollectionView");

    std::size_t const second = phone().trace().count();
    auto const other = anotherController();
    Lines const again = steps(second);
    ASSERT_GE(again.size(), 6u);
    EXPECT_EQ(Lines(again.begin(), again.begin() + 6),
        (Lines { "previous viewDidLoad", "sent initFirstPreferences", "addArrangedSubview: 0",
            "CVLView.centerX == UIStackView.centerX + 0", "CVLView.leading == UIStackView.leading + 10",
            "CVLView.trailing == UIStackView.trailing - 10" }));
}

INSTANTIATE_TEST_SUITE_P(Systems, LockScreenStripOn, testing::ValuesIn(kVersions));

TEST_F(LockScreenStrip, IsMadeWithTheFrameOfItsScreen)
{
    BootOptions system = options("15.4", { { "isEnabled", false } });
    system.width = 430;
    system.height = 932;
    boot(system);
    switchOn();
    EXPECT_FALSE(phone().strip());

    auto const controller = anotherController();

    EXPECT_EQ(told("frame", "value"), Lines { R"({"rect":[0.0,27.0,375.0,80.0]})" });
    EXPECT_EQ(arranged(controller.get()), Lines { "CVLView" });
}

TEST_F(LockScreenStrip, SpansTheListWithTheBandedStyle)
{
    boot(options("15.4", { { "bannerStyle", 2 } }));

    EXPECT_EQ(constraints(),
        (Lines { "CVLView.centerX == UIStackView.centerX + 0", "CVLView.leading == UIStackView.leading + 0",
            "CVLView.trailing == UIStackView.trailing + 0", "CVLView.height == 90" }));
    layoutWindowsIfNeeded();
    EXPECT_EQ(phone().strip().frame(), CGRectMake(0, 0, 390, 90));
}

TEST_F(LockScreenStrip, IsInsetWithEveryOtherStyle)
{
    boot(options("15.4", { { "bannerStyle", 0 } }));

    EXPECT_EQ(constraints()[1], "CVLView.leading == UIStackView.leading + 10");
    EXPECT_EQ(constraints()[2], "CVLView.trailing == UIStackView.trailing - 10");
}

TEST_F(LockScreenStrip, IsFirstAndStaysWhereItIsWhenAlwaysOnTop)
{
    boot(options("15.4", { { "isAlwaysOnTop", true } }));
    EXPECT_EQ(placements(), Lines { "insertArrangedSubview:atIndex: 0" });

    phone().setMusicPlaying(true);
    host().send<"_updatePresentingContent">();

    EXPECT_EQ(arranged(host()).front(), "CVLView");
    EXPECT_EQ(arranged(host()).size(), 2u);
    EXPECT_EQ(placements().size(), 1u);
}

TEST_F(LockScreenStrip, IsPutFirstOnceALoad)
{
    boot(options("15.4", { { "isAlwaysOnTop", true } }));
    phone().setMusicPlaying(true);
    std::size_t const before = phone().trace().count();

    host().send<"viewDidLoad">();

    EXPECT_EQ(placements(before), Lines { "insertArrangedSubview:atIndex: 0" });
    EXPECT_EQ(arranged(host()).front(), "CVLView");
    EXPECT_EQ(arranged(host()).size(), 2u);
}

TEST_F(LockScreenStrip, FollowsTheSwitchToTheTopAtOnce)
{
    boot(options("15.4"));
    ASSERT_TRUE(phone().changeSettings({ { "isAlwaysOnTop", true } }, {}));
    std::size_t const before = phone().trace().count();

    phone().setMusicPlaying(true);

    EXPECT_TRUE(placements(before).empty());
    EXPECT_EQ(arranged(host()).front(), "CVLView");
}

TEST_F(LockScreenStrip, GoesToTheEndAfterSpringBoardsOwnUpdate)
{
    boot(options("15.4"));
    std::size_t const before = phone().trace().count();

    host().send<"_updatePresentingContent">();

    Lines kinds;
    for (Json const& event : phone().trace().events(before))
        if (event["kind"] == "stack" || event["kind"] == "previous")
            kinds.push_back(event["kind"]);
    // Whether it presents anything is asked in between, and answered by the plug-in.
    EXPECT_EQ(kinds, (Lines { "previous", "stack", "stack" }));
}

TEST_F(LockScreenStrip, PassesAnInsertedItemOnAsItIs)
{
    boot(options("15.4"));
    auto const item = make<UIView>(CGRectMake(0, 0, 10, 10));

    for (BOOL const animated : { BOOL(true), BOOL(false) }) {
        std::size_t const before = phone().trace().count();
        host().send<"_insertItem:animated:">(item.get(), animated);
        auto const own = events("previous", before);
        ASSERT_FALSE(own.empty());
        EXPECT_EQ(own[0]["selector"], "_insertItem:animated:");
        EXPECT_EQ(own[0]["arguments"][0]["class"], "UIView");
        EXPECT_EQ(own[0]["arguments"][1], bool(animated));
    }
    EXPECT_EQ(arranged(host()), (Lines { "UIView", "CVLView" }));
    // Nothing says how high the item is: its own height stays, and the strip comes below it.
    host().view().layoutIfNeeded();
    EXPECT_EQ(item->frame(), CGRectMake(0, 0, 390, 10));
    EXPECT_EQ(phone().strip().frame().origin, (CGPoint { 10, 18 }));
}

TEST_F(LockScreenStrip, IsOneForEveryController)
{
    boot(options("15.4"));
    UIView const strip = phone().strip();
    std::size_t const before = phone().trace().count();

    auto const second = anotherController();

    EXPECT_EQ(arranged(second.get()), Lines { "CVLView" });
    EXPECT_EQ(stackOf(second.get()).arranged()[0], strip);
    EXPECT_TRUE(arranged(host()).empty());
    EXPECT_TRUE(observed(before).empty());
    EXPECT_GE(constraints(before).size(), 3u);   // the height may be the one that it has
    second->view().setFrame(CGRectMake(0, 0, 390, 300));
    second->view().send<"layoutIfNeeded">();
    EXPECT_EQ(strip.frame().size, (CGSize { 370, 90 }));
}

TEST_F(LockScreenStrip, IsPlacedOnceMoreAtARepeatedLoad)
{
    boot(options("15.4"));
    UIView const strip = phone().strip();
    strip.setTranslatesAutoresizingMaskIntoConstraints(true);
    std::size_t const before = phone().trace().count();

    host().send<"viewDidLoad">();

    EXPECT_FALSE((strip.send<"translatesAutoresizingMaskIntoConstraints", BOOL>()));
    EXPECT_EQ(told("previous", "selector", before).front(), "viewDidLoad");
    EXPECT_EQ(arranged(host()), Lines { "CVLView" });
    EXPECT_EQ(phone().strip(), strip);
    EXPECT_TRUE(observed(before).empty());
    layoutWindowsIfNeeded();
    EXPECT_EQ(strip.frame(), CGRectMake(10, 0, 370, 90));
}

TEST_F(LockScreenStrip, StartsHiddenUntilItIsSummoned)
{
    boot(options("15.4", { { "hideLSView", true } }));

    ASSERT_EQ(arranged(host()), Lines { "CVLView" });
    EXPECT_TRUE(phone().strip().isHidden());
    EXPECT_EQ(told("frame", "call"), (Lines { "initWithFrame:", "setHidden:" }));
    EXPECT_EQ(told("frame", "view"), Lines(2, "strip"));
}

TEST_F(LockScreenStrip, IsHiddenByTheSettingOnlyWhenItIsMade)
{
    boot(options("15.4"));
    ASSERT_TRUE(phone().changeSettings({ { "hideLSView", true } }, {}));
    EXPECT_FALSE(phone().strip().isHidden());

    host().send<"viewDidLoad">();
    host().send<"_updatePresentingContent">();
    auto const controller = anotherController();

    EXPECT_EQ(arranged(controller.get()), Lines { "CVLView" });
    EXPECT_FALSE(phone().strip().isHidden());
}

TEST_F(LockScreenStrip, IsNotShownByTheSettingOnceItIsMade)
{
    boot(options("15.4", { { "hideLSView", true } }));
    ASSERT_TRUE(phone().changeSettings({ { "hideLSView", false } }, {}));

    host().send<"viewDidLoad">();
    host().send<"_updatePresentingContent">();

    EXPECT_TRUE(phone().strip().isHidden());
}

TEST_F(LockScreenStrip, IsMissedByNothingBeforeItIsMade)
{
    boot(options("15.4", { { "isEnabled", false } }));
    switchOn();
    ASSERT_FALSE(phone().strip());
    std::size_t const before = phone().trace().count();

    phone().setMusicPlaying(true);
    host().send<"_updatePresentingContent">();

    for (Json const& event : events("stack", before))
        EXPECT_TRUE(event.contains("own")) << event;   // SpringBoard's
    EXPECT_EQ(arranged(host()).size(), 1u);
    EXPECT_TRUE((host().send<"isPresentingContent", BOOL>()));   // which asks for no strip
}

TEST_F(LockScreenStrip, IsLeftAloneOnceSwitchedOff)
{
    boot(options("15.4"));
    switchOff();
    std::size_t const before = phone().trace().count();

    phone().setMusicPlaying(true);
    host().send<"viewDidLoad">();

    EXPECT_TRUE(placements(before).empty());
    EXPECT_EQ(arranged(host()).front(), "CVLView");
    EXPECT_EQ(arranged(host()).size(), 2u);
    EXPECT_TRUE(constraints(before).empty());
}

TEST_F(LockScreenStrip, KeepsTheAreaOnScreenWhileSwitchedOn)
{
    boot(options("15.4"));
    std::size_t const before = phone().trace().count();
    EXPECT_TRUE((host().send<"isPresentingContent", BOOL>()));
    EXPECT_TRUE(events("previous", before).empty());

    switchOff();
    std::size_t const off = phone().trace().count();
    EXPECT_FALSE((host().send<"isPresentingContent", BOOL>()));
    EXPECT_EQ(told("previous", "selector", off), Lines { "isPresentingContent" });
    phone().setMusicPlaying(true);
    EXPECT_TRUE((host().send<"isPresentingContent", BOOL>()));

    switchOn();
    phone().setMusicPlaying(false);
    EXPECT_TRUE((host().send<"isPresentingContent", BOOL>()));
}

TEST_F(LockScreenStrip, GoesNowhereWithoutAStack)
{
    BootOptions system = options("15.4");
    system.absent = { "CSNotificationAdjunctListViewController._stackView" };
    boot(system);

    EXPECT_EQ(observed().size(), 4u);   // it was made all the same
    EXPECT_FALSE(phone().strip());
    EXPECT_TRUE(constraints().empty());
    phone().setMusicPlaying(true);
    host().send<"viewDidLoad">();
    EXPECT_EQ(arranged(host()).size(), 1u);
    phone().requestUnlock();
    phone().advance(1);
    EXPECT_FALSE(phone().isLocked());
}

TEST_F(LockScreenStrip, ARecordIsFilledAtEachLoadAndAtNoOtherTime)
{
    boot(options("15.4", { { "isDynamicSize", true } }, 2));
    ASSERT_TRUE(phone().changeSettings({ { "isDynamicSize", false } }, {}));

    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");

    ASSERT_TRUE(phone().overlay());
    EXPECT_EQ(phone().overlay().bounds().size.width, 148);   // two slots of five: as the record was
}

TEST_F(LockScreenStrip, ARepeatedLoadFillsTheRecord)
{
    boot(options("15.4", { { "isDynamicSize", true } }, 2));
    ASSERT_TRUE(phone().changeSettings({ { "isDynamicSize", false } }, {}));
    host().send<"viewDidLoad">();

    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");

    ASSERT_TRUE(phone().overlay());
    EXPECT_EQ(phone().overlay().bounds().size.width, 370);
}

class TurnedScreen : public LockScreenStrip {
protected:
    static void bootWithOverlay()
    {
        boot(options("15.4"));
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        phone().advance(1);
        ASSERT_TRUE(phone().overlay());
        logStripMessages();
    }
    static Lines turn(int orientation, OrientationNotifications notifications = {})
    {
        std::size_t const before = phone().trace().count();
        EXPECT_TRUE(phone().setOrientation(orientation, notifications));
        Lines lines = story(before);
        std::erase_if(
            lines, [](std::string const& each) { return each.find("rotateView") == std::string::npos; });
        return lines;
    }
};

TEST_F(TurnedScreen, TurnsTheOverlayOncePerTurn)
{
    bootWithOverlay();

    EXPECT_EQ(turn(3), Lines { "overlay rotateView" });
    EXPECT_TRUE(turn(3).empty());
    EXPECT_EQ(turn(4, { .screenChanged = true, .windowRotated = false }), Lines { "overlay rotateView" });
    EXPECT_EQ(turn(1, { .screenChanged = false, .windowRotated = true }), Lines { "overlay rotateView" });
    EXPECT_TRUE(turn(1).empty());
    EXPECT_TRUE(turn(2, { .screenChanged = false, .windowRotated = false }).empty());
    EXPECT_EQ(turn(2), Lines { "overlay rotateView" });
}

TEST_F(TurnedScreen, KnowsHowItLayWhenTheStripWasMade)
{
    bootWithOverlay();

    EXPECT_TRUE(turn(1).empty());
    EXPECT_EQ(turn(3), Lines { "overlay rotateView" });
}

TEST_F(TurnedScreen, KnowsThatItLayOnItsSideWhenTheStripWasMade)
{
    boot(options("15.4", { { "isEnabled", false } }));
    ASSERT_TRUE(phone().setOrientation(4));
    switchOn();
    host().send<"viewDidLoad">();
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
    phone().advance(1);
    ASSERT_TRUE(phone().overlay());
    logStripMessages();

    EXPECT_TRUE(turn(4).empty());
    EXPECT_EQ(turn(1), Lines { "overlay rotateView" });
}

TEST_F(TurnedScreen, TurnsNothingWithoutAnOverlayButKeepsTheOrientation)
{
    boot(options("15.4"));
    logStripMessages();
    EXPECT_TRUE(turn(3).empty());
    EXPECT_TRUE(turn(1).empty());
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");

    EXPECT_TRUE(turn(1).empty());
    EXPECT_EQ(turn(4), Lines { "overlay rotateView" });
}

}
