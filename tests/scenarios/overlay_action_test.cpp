// Actions of the overlay strip: each puts the strip away, at its own moment.
#include "tests/scenarios/actions.hpp"

#include <algorithm>

namespace phone {

class OverlayParking : public Story {
protected:
    static UIView overlayContact(std::size_t index = 0)
    {
        std::vector<UIView> contacts;
        for (UIView const view : visibleViews())
            if (view.send<"isKindOfClass:", BOOL>(objc::class_handle { objc_getClass("CVLButton") })
                && view.isDescendantOfView(phone().overlay()))
                contacts.push_back(view);
        std::ranges::sort(contacts, {}, [](UIView view) { return view.convertPointToView({ 0, 0 }, {}).x; });
        return index < contacts.size() ? contacts[index] : UIView {};
    }
    static void summonOverlay()
    {
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        wait();
        ASSERT_TRUE(phone().overlay());
        forget();
    }
    static bool isShown() { return bool(phone().overlay()); }
};

class OverlayAction : public OverlayParking,
                      public testing::WithParamInterface<std::tuple<char const*, int>> {
protected:
    static int code() { return std::get<1>(GetParam()); }
    static void bootWithOverlay(Json contact = annasEntry())
    {
        auto options = Story::options(std::get<0>(GetParam()),
            { { "singleTapAction", code() }, { "askBeforeCall", false },
                { "validateUnlockBeforeCall", true } },
            Json::array({ contact }));
        options.passcode = kStoryPasscode;
        options.locked = false;
        boot(options);
        summonOverlay();
    }
};

TEST_P(OverlayAction, RunsAtOnceOnAnUnlockedPhoneAndPutsTheStripAway)
{
    bootWithOverlay();
    ActionRow const& action = actionOfTap(code());

    touch(overlayContact());
    wait();

    Effects expected { "sound 1519", "passcodeTest no" };
    if (action.group == ActionGroup::messagingApp)
        expected.push_back("unlockRequest");
    EXPECT_EQ(effects(), expected + action.atOnce + action.later);
    EXPECT_FALSE(isShown());
}

TEST_P(OverlayAction, LeavesTheStripWithoutATarget)
{
    bootWithOverlay(emptyEntry());

    touch(overlayContact());
    wait();

    EXPECT_EQ(effects(), (Effects { "sound 1519", "passcodeTest no" }));
    EXPECT_TRUE(isShown());
}

TEST_P(OverlayAction, PutsTheStripAwayAlsoWhenNothingTakesTheUrl)
{
    bootWithOverlay();
    for (char const* const app : { "whatsapp", "telegram" })
        ASSERT_TRUE(phone().setAvailable(app, false));

    touch(overlayContact());
    wait();

    EXPECT_FALSE(isShown());
}

INSTANTIATE_TEST_SUITE_P(EverySystem, OverlayAction,
    testing::Combine(testing::ValuesIn(kStoryVersions), testing::Range(0, 8)), [](auto const& info) {
        return versionName(std::get<0>(info.param)) + "Code" + std::to_string(std::get<1>(info.param));
    });

class TwoWishes : public OverlayParking, public testing::WithParamInterface<char const*> { };

// The overlay lies over the passcode screen, so that a finger can wish for something else meanwhile.
TEST_P(TwoWishes, RunTheLastOne)
{
    Json bora = annasEntry();
    bora["contactFirstName"] = "Bora";
    bora["contactPhoneNumber"] = "+1 555 0100";
    auto options =
        Story::options(GetParam(), { { "singleTapAction", 5 } }, Json::array({ annasEntry(), bora }));
    options.passcode = kStoryPasscode;
    boot(options);
    summonOverlay();

    touch(contactButton(0));
    wait();
    EXPECT_EQ(effects(), (Effects { "sound 1519", "passcodeTest yes", "unlockRequest", "passcode shown" }));
    touch(overlayContact(1));
    wait();
    EXPECT_EQ(effects(), (Effects { "sound 1519", "passcodeTest yes", "unlockRequest" }));
    typePasscode();
    wait();

    EXPECT_EQ(only(effects(), { "MFMessageComposeViewControllerCVL", "present" }),
        (Effects { "MFMessageComposeViewControllerCVL setMessageComposeDelegate:(CVLView)",
            "MFMessageComposeViewControllerCVL setRecipients:([\"+1 555 0100\"])",
            "MFMessageComposeViewControllerCVL becomeFirstResponder()",
            "present MFMessageComposeViewControllerCVL" }));
    EXPECT_FALSE(isShown());
    EXPECT_TRUE(phone().isLocked());
}

INSTANTIATE_TEST_SUITE_P(EverySystem, TwoWishes, testing::ValuesIn(kStoryVersions),
    [](auto const& info) { return versionName(info.param); });

// What was parked runs on the lock screen's strip, whichever strip was touched.
TEST_F(OverlayParking, RunsOnTheLockScreensStrip)
{
    auto options = Story::options("15.4", { { "singleTapAction", 5 } });
    options.passcode = kStoryPasscode;
    boot(options);
    summonOverlay();

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

class OverlayPrompt : public OverlayParking,
                      public testing::WithParamInterface<std::tuple<char const*, int>> { };

TEST_P(OverlayPrompt, LeavesTheStripUntilItIsAnsweredWithYes)
{
    auto const [version, code] = GetParam();
    auto options = Story::options(version, { { "singleTapAction", code } });
    options.locked = false;
    boot(options);
    summonOverlay();

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

INSTANTIATE_TEST_SUITE_P(Calls, OverlayPrompt,
    testing::Combine(testing::Values("12.4", "13.7", "14.8", "15.4"), testing::Values(0, 6)),
    [](auto const& info) {
        return versionName(std::get<0>(info.param)) + "Code" + std::to_string(std::get<1>(info.param));
    });

// What comes up on the overlay's own controller lies in the overlay's window, which takes touches on the strip alone: it is seen,
// and no finger reaches it.
class OverlayWindow : public OverlayParking, public testing::WithParamInterface<char const*> {
protected:
    static void bootUnlocked(int tapCode)
    {
        auto options = Story::options(GetParam(), { { "singleTapAction", tapCode } });
        options.locked = false;
        boot(options);
        summonOverlay();
        touch(overlayContact());
        wait();
    }
};

TEST_P(OverlayWindow, TakesNoTouchesForAComposer)
{
    bootUnlocked(5);

    ASSERT_TRUE(presented("MFMessageComposeViewController"));
    EXPECT_TRUE(shows("+44 20 7946-0958"));
    EXPECT_FALSE(button("Cancel"));
    EXPECT_FALSE(isShown());
}

TEST_P(OverlayWindow, TakesNoTouchesForAPromptFromSixteenOn)
{
    bootUnlocked(0);

    EXPECT_EQ(alertRows().size(), 2u);
    EXPECT_EQ(bool(alertRow("No")), std::string(GetParam()) != "16.1");
    EXPECT_TRUE(isShown());
}

INSTANTIATE_TEST_SUITE_P(EverySystem, OverlayWindow, testing::ValuesIn(kStoryVersions),
    [](auto const& info) { return versionName(info.param); });

}
