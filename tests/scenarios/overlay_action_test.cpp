// Actions of the overlay strip: each puts the strip away, at its own moment.
#include "tests/scenarios/actions.hpp"

namespace phone {

class OverlayParking : public Story {
protected:
    static UIView overlayContact()
    {
        for (UIView const view : visibleViews())
            if (view.send<"isKindOfClass:", BOOL>(objc::class_handle { objc_getClass("CVLButton") })
                && view.isDescendantOfView(phone().overlay()))
                return view;
        return {};
    }
};

class OverlayAction : public OverlayParking, public testing::WithParamInterface<int> {
protected:
    static void bootWithOverlay(Json settings)
    {
        settings["singleTapAction"] = GetParam();
        settings["askBeforeCall"] = false;
        auto options = Story::options("15.4", settings);
        options.locked = false;
        boot(options);
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        wait();
        ASSERT_TRUE(isShown());
        forget();
    }
    static bool isShown() { return bool(phone().overlay()); }
};

TEST_P(OverlayAction, PutsTheStripAway)
{
    bootWithOverlay(Json::object());

    touch(overlayContact());
    wait();

    EXPECT_FALSE(only(effects(), { "openURL", "siri", "present" }).empty());
    EXPECT_FALSE(isShown());
}

TEST_P(OverlayAction, PutsTheStripAwayAlsoWhenNothingTakesTheUrl)
{
    bootWithOverlay(Json::object());
    for (char const* const app : { "whatsapp", "telegram" })
        ASSERT_TRUE(phone().setAvailable(app, false));

    touch(overlayContact());
    wait();

    EXPECT_FALSE(isShown());
}

INSTANTIATE_TEST_SUITE_P(Every, OverlayAction, testing::Range(0, 8),
    [](auto const& info) { return "Code" + std::to_string(info.param); });

// What was parked runs on the lock screen's strip, whichever strip was touched.
TEST_F(OverlayParking, RunsOnTheLockScreensStrip)
{
    auto options = Story::options("15.4", { { "singleTapAction", 5 } });
    options.passcode = kStoryPasscode;
    boot(options);
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
    wait();

    touch(overlayContact());
    wait();
    ASSERT_TRUE(phone().isPasscodeShown());
    typePasscode();
    wait();

    ASSERT_TRUE(presented("MFMessageComposeViewController"));
    Json last;
    for (Json const& event : phone().trace().events())
        if (event["kind"] == "present")
            last = event;
    EXPECT_EQ(last["presenter"], "CSNotificationAdjunctListViewController");
    EXPECT_FALSE(phone().overlay());
    EXPECT_TRUE(phone().isLocked());
}

class OverlayPrompt : public OverlayAction { };

TEST_P(OverlayPrompt, LeavesTheStripUntilItIsAnsweredWithYes)
{
    auto options = Story::options("15.4", { { "singleTapAction", GetParam() } });
    options.locked = false;
    boot(options);
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
    wait();

    touch(overlayContact());
    wait();
    EXPECT_TRUE(isShown());
    touch(alertRow("No"));
    wait();
    EXPECT_TRUE(isShown());

    touch(overlayContact());
    wait();
    touch(alertRow("Yes"));
    wait();
    EXPECT_FALSE(isShown());
}

INSTANTIATE_TEST_SUITE_P(Calls, OverlayPrompt, testing::Values(0, 6),
    [](auto const& info) { return "Code" + std::to_string(info.param); });

}
