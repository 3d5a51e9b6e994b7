// What happens between a locked phone and its owner: two wishes, an abandoned one, overlays, missing apps, the
// screen that goes dark.
#include "tests/scenarios/actions.hpp"

#include "objc/hook.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/substrate.hpp"
#include "phone/uikit/ui_alert_controller.hpp"

#include <algorithm>

namespace phone {

namespace {

// A second contact, whose strings tell her from Anna.
Json borasEntry()
{
    Json entry = annasEntry();
    entry["contactFirstName"] = "Bora";
    entry["contactPhoneNumber"] = "+1 555 0100";
    entry["contactEmail"] = "bora@example.com";
    return entry;
}

// What the strip had to tell when the unlock was asked for.
NSInteger g_parkedAtRequest = 0;
BOOL g_stayedAtRequest = false;

struct RequestUnlock {
    static inline objc::original<void(objc::handle, SEL)> original;
    static void replacement(objc::handle self, SEL cmd)
    {
        g_parkedAtRequest = phone().strip().send<"actionState", NSInteger>();
        g_stayedAtRequest = phone().strip().send<"getShouldStayAtLS", BOOL>();
        original(self, cmd);
    }
    static void hook()
    {
        auto const [replacement, slot] = objc::hook<RequestUnlock>();
        MSHookMessageEx(objc_getClass("SBLockScreenManager"),
            objc::selector<"lockScreenViewControllerRequestsUnlock">(), replacement, slot);
    }
};

}

class LockStory : public Story, public testing::WithParamInterface<char const*> {
protected:
    static void bootLocked(Json settings, bool hasPasscode = true)
    {
        settings["askBeforeCall"] = settings.value("askBeforeCall", false);
        auto options = Story::options(GetParam(), settings, Json::array({ annasEntry(), borasEntry() }));
        if (hasPasscode)
            options.passcode = kStoryPasscode;
        boot(options);
    }
    static bool isPromptWindowLeft()
    {
        for (UIWindow const window : phone().windows())
            if (window.windowLevel() > 2000)
                return true;
        return false;
    }
};

TEST_P(LockStory, RunsTheLastOfTwoParkedActions)
{
    bootLocked({ { "singleTapAction", 5 } });
    UIView const bora = contactButton(1);
    touch(contactButton(0));
    wait();
    // The passcode screen covers the strip: the second wish comes by a message.
    phone().strip().send<"buttonPressedAction:">(bora);
    forget();

    typePasscode();
    wait();

    EXPECT_EQ(only(effects(), { "MFMessageComposeViewControllerCVL", "present" }),
        (Effects { "MFMessageComposeViewControllerCVL setMessageComposeDelegate:(CVLView)",
            "MFMessageComposeViewControllerCVL setRecipients:([\"+1 555 0100\"])",
            "MFMessageComposeViewControllerCVL becomeFirstResponder()",
            "present MFMessageComposeViewControllerCVL" }));
    EXPECT_TRUE(shows("+1 555 0100"));
    EXPECT_TRUE(phone().isLocked());
}

// The flag that keeps the phone on its lock screen was raised by the first wish and stays up for the second.
TEST_P(LockStory, DropsAnotherAppsActionThatCameAfterOneForTheLockScreen)
{
    bootLocked({ { "singleTapAction", 5 } });
    hold(contactButton(0));
    wait();
    UIAlertController const sheet { alert().object };
    ASSERT_TRUE(sheet);
    phone().strip().send<"buttonPressedAction:">(contactButton(0));
    wait();
    auto const actions = sheet.actionsOnScreen();
    auto const chosen = std::ranges::find(
        actions, "Send WhatsApp Message", [](UIAlertAction action) { return toString(action.title()); });
    ASSERT_NE(chosen, actions.end());
    sheet.choose(*chosen);
    wait();
    forget();

    typePasscode();
    wait();

    EXPECT_EQ(effects(), (Effects { "passcode accepted", "passcode disappeared" }));
    EXPECT_TRUE(phone().isLocked());
    phone().requestUnlock();
    wait();
    EXPECT_TRUE(only(effects(), { "openURL", "present" }).empty());
    EXPECT_FALSE(phone().isLocked());
}

TEST_P(LockStory, TellsItsParkedActionOnce)
{
    bootLocked({ { "singleTapAction", 2 } });
    touch(contactButton());
    wait();

    EXPECT_EQ((phone().strip().send<"actionState", NSInteger>()), 7);
    EXPECT_EQ((phone().strip().send<"actionState", NSInteger>()), 0);
}

TEST_P(LockStory, ParksItsActionBeforeItAsksForTheUnlock)
{
    bootLocked({ { "singleTapAction", 2 } });
    RequestUnlock::hook();

    touch(contactButton());
    wait();

    EXPECT_EQ(g_parkedAtRequest, 7);
    EXPECT_FALSE(g_stayedAtRequest);
}

TEST_P(LockStory, MeansToStayBeforeItAsksForTheUnlock)
{
    bootLocked({ { "singleTapAction", 5 } });
    RequestUnlock::hook();

    touch(contactButton());
    wait();

    EXPECT_EQ(g_parkedAtRequest, 3);
    EXPECT_TRUE(g_stayedAtRequest);
}

TEST_P(LockStory, MeansToStayForItsMenuBeforeItAsksForTheUnlock)
{
    bootLocked({ { "singleTapAction", 9 }, { "validateUnlockBeforeCall", true } });
    RequestUnlock::hook();

    hold(contactButton());
    wait();

    EXPECT_EQ(g_parkedAtRequest, 9);
    EXPECT_TRUE(g_stayedAtRequest);
}

TEST_P(LockStory, ForgetsAWishWhenTheSideButtonPutsThePasscodeAway)
{
    bootLocked({ { "singleTapAction", 1 } });
    touch(contactButton());
    wait();

    phone().lock();
    wait();
    EXPECT_FALSE(phone().isPasscodeShown());
    phone().requestUnlock();
    wait();
    typePasscode();
    wait();

    EXPECT_TRUE(only(effects(), { "openURL" }).empty());
    EXPECT_FALSE(phone().isLocked());
}

TEST_P(LockStory, DeletesADigitAndGoesOn)
{
    bootLocked({ { "singleTapAction", 1 } });
    touch(contactButton());
    wait();

    typePasscode("12");
    touch(button("Delete"));
    typePasscode("234");
    wait();

    EXPECT_FALSE(phone().isLocked());
}

TEST_P(LockStory, DoesNothingForACodeOutOfRange)
{
    bootLocked({ { "singleTapAction", 8 } });

    touch(contactButton());
    wait();

    EXPECT_EQ(effects(), Effects { "sound 1519" });
}

TEST_P(LockStory, SendsAndCancelsAMessageByTouch)
{
    bootLocked({ { "singleTapAction", 5 } }, false);
    for (char const* const end : { "Send", "Cancel" }) {
        touch(contactButton());
        wait();
        EXPECT_TRUE(shows("+44 20 7946-0958"));
        EXPECT_TRUE(phone().idleTimer().holds("CVL"));
        forget();

        touch(button(end));
        wait();

        EXPECT_EQ(effects(), (Effects { "release CVL", "dismiss MFMessageComposeViewControllerCVL" }));
        EXPECT_EQ(phone().trace().events().back()["animated"], true);
        EXPECT_FALSE(phone().idleTimer().isDisabled());
    }
}

TEST_P(LockStory, SendsAndCancelsAMailByTouch)
{
    bootLocked({ { "singleTapAction", 7 } }, false);
    for (char const* const end : { "Send", "Cancel" }) {
        touch(contactButton());
        wait();
        EXPECT_TRUE(shows("anna@example.com"));
        forget();

        touch(button(end));
        wait();

        EXPECT_EQ(effects(), (Effects { "release CVL", "dismiss MFMailComposeViewControllerCVL" }));
        EXPECT_FALSE(phone().idleTimer().isDisabled());
    }
}

TEST_P(LockStory, DropsAMessageThatCannotBeSent)
{
    bootLocked({ { "singleTapAction", 5 } }, false);
    ASSERT_TRUE(phone().setAvailable("messages", false));

    touch(contactButton());
    wait();

    EXPECT_EQ(effects(),
        (Effects { "sound 1519", "passcodeTest no", "canSend MFMessageComposeViewController no" }));
    ASSERT_TRUE(phone().setAvailable("messages", true));
    touch(contactButton());
    wait();
    EXPECT_TRUE(presented("MFMessageComposeViewController"));
}

TEST_P(LockStory, DropsAMailThatCannotBeSent)
{
    bootLocked({ { "singleTapAction", 7 } }, false);
    ASSERT_TRUE(phone().setAvailable("mail", false));

    touch(contactButton());
    wait();

    EXPECT_EQ(effects(),
        (Effects { "sound 1519", "passcodeTest no", "canSend MFMailComposeViewControllerCVL no" }));
}

TEST_P(LockStory, TellsOfAnAppThatIsMissing)
{
    bootLocked({ { "singleTapAction", 2 } }, false);
    ASSERT_TRUE(phone().setAvailable("telegram", false));

    touch(contactButton());
    wait();

    EXPECT_EQ(only(effects(), { "openURL", "completion" }),
        (Effects { "openURL tg://msg?&to=+442079460958", "completion no" }));
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");
}

TEST_P(LockStory, ShowsTheAppThatAUrlOpens)
{
    bootLocked({ { "singleTapAction", 1 } });
    touch(contactButton());
    wait();
    typePasscode();
    wait();

    EXPECT_EQ(phone().frontMostApplication(), "net.whatsapp.WhatsApp");
    EXPECT_TRUE(shows("whatsapp://send?phone=+44207946-0958"));

    phone().drag({ 195, 835 }, { 195, 500 }, 0.3);
    wait();
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");
    EXPECT_FALSE(shows("whatsapp://send?phone=+44207946-0958"));
}

TEST_P(LockStory, PlacesACallOverTheLockScreenAndEndsIt)
{
    bootLocked({ { "singleTapAction", 0 } });

    touch(contactButton());
    wait();
    EXPECT_TRUE(shows("+44207946-0958"));
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.mobilephone");
    EXPECT_TRUE(phone().isPasscodeLocked());

    touch(button("End"));
    wait();
    EXPECT_FALSE(shows("+44207946-0958"));
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");
    EXPECT_TRUE(contactButton());
}

TEST_P(LockStory, SendsSiriAwayByTouch)
{
    bootLocked({ { "singleTapAction", 3 } }, false);
    touch(contactButton());
    wait();
    EXPECT_TRUE(shows("call +44 20 7946-0958 in whatsapp"));

    touch(button("Siri"));
    wait();

    EXPECT_FALSE(shows("call +44 20 7946-0958 in whatsapp"));
}

TEST_P(LockStory, AsksBeforeACallAndTakesNoForAnAnswer)
{
    bootLocked({ { "singleTapAction", 0 }, { "askBeforeCall", true } });
    touch(contactButton());
    wait();
    EXPECT_EQ(only(effects(), { "alert", "release", "openURL" }),
        (Effects { "alert Confirmation: You are about to call:\nAnna, +44 20 7946-0958\n Are you sure?",
            "release CVL" }));

    touch(alertRow("No"));
    wait();
    EXPECT_EQ(effects(), Effects { "dismiss UIAlertController" });
    EXPECT_FALSE(isPromptWindowLeft());

    touch(contactButton());
    wait();
    forget();
    touch(alertRow("Yes"));
    wait();
    EXPECT_EQ(
        effects(), (Effects { "dismiss UIAlertController", "openURL tel:+44207946-0958", "completion yes" }));
    EXPECT_FALSE(isPromptWindowLeft());
}

TEST_P(LockStory, CallsTheNumberOfTheLastContactThatWasAskedAbout)
{
    bootLocked({ { "singleTapAction", 6 }, { "askBeforeCall", true } });
    UIView const bora = contactButton(1);
    touch(contactButton(0));
    wait();
    phone().strip().send<"buttonPressedAction:">(bora);
    wait();
    touch(alertRow("Yes"));
    wait();

    EXPECT_EQ(only(effects(), { "openURL" }), Effects { "openURL facetime:+15550100" });
}

TEST_P(LockStory, DimsAndLocksUnlessTheMenuIsUp)
{
    bootLocked({ { "singleTapAction", 9 } }, false);
    hold(contactButton());
    wait(100);
    EXPECT_FALSE(screenState().isDimmed);

    touch(alertRow("Cancel"));
    wait(31.5);
    EXPECT_TRUE(screenState().isDimmed);

    touch(contactButton());
    EXPECT_FALSE(screenState().isDimmed);

    phone().requestUnlock();
    wait();
    EXPECT_FALSE(phone().isLocked());
    wait(40);
    EXPECT_TRUE(phone().isLocked());
    EXPECT_TRUE(screenState().isDimmed);
}

TEST_P(LockStory, ShowsEachTapOfTheMotorForAMoment)
{
    bootLocked({ { "singleTapAction", 8 } });

    touch(contactButton());
    EXPECT_TRUE(screenState().showsHapticMark);
    wait(0.5);
    EXPECT_FALSE(screenState().showsHapticMark);
}

TEST_P(LockStory, PutsAppsAwayWhenItLocksAndLeavesSheets)
{
    bootLocked({ { "singleTapAction", 1 } }, false);
    hold(contactButton());
    wait();
    ASSERT_TRUE(phone().launch("net.whatsapp.WhatsApp"));
    phone().requestUnlock();
    wait();
    EXPECT_FALSE(phone().isLocked());

    phone().lock();
    wait();

    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");
    EXPECT_TRUE(alert());
}

INSTANTIATE_TEST_SUITE_P(EverySystem, LockStory, testing::ValuesIn(kStoryVersions),
    [](auto const& info) { return versionName(info.param); });

}
