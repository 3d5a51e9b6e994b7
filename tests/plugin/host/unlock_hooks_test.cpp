// What waits behind the passcode: which action runs on which occasion, and what SpringBoard gets to do.
#include "tests/plugin/host/message_log.hpp"

namespace phone {

namespace {

using Lines = std::vector<std::string>;

constexpr char kWillDismiss[] = "previous lockScreenViewControllerWillDismiss";
constexpr char kFinish[] = "previous _finishUIUnlockFromSource:withOptions:";
constexpr char kDidDisappear[] = "previous viewDidDisappear:";

Lines const kForgetting { kDidDisappear, "strip setShouldStayAtLS: false", "strip resetActionState" };

struct Row {
    NSInteger code;
    char const* dismissal;      // the message at the lock screen's dismissal; none: ""
    char const* unlockFinish;   // and at the end of a swallowed unlock
};

// Written out anew: every code, those beyond both ends too.
constexpr Row kRows[] = {
    { -1, "", "" },
    { 0, "", "" },
    { 1, "msgWA", "" },
    { 2, "callWA", "" },
    { 3, "", "msgSMS" },
    { 4, "", "sndEmail" },
    { 5, "", "callPhone" },
    { 6, "", "callFacetime" },
    { 7, "msgTG", "" },
    { 8, "callTG", "" },
    { 9, "", "showMenu: nil" },
    { 10, "", "" },
    { 0x100000001, "", "" },
};

void addIfAny(Lines& lines, char const* message)
{
    if (*message)
        lines.push_back(std::string("strip ") + message);
}

}

class WaitingActions : public CorvelTest {
protected:
    // Not locked, so that SpringBoard's own part has nothing left to do.
    static void bootUnlocked(bool isEnabled = true)
    {
        BootOptions system = options("15.4", { { "isEnabled", isEnabled } });
        system.locked = false;
        boot(system);
        logStripMessages();
    }
    static void showOverlay()
    {
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        phone().advance(1);
        ASSERT_TRUE(phone().overlay());
    }
    static Lines willDismiss()
    {
        std::size_t const before = phone().trace().count();
        phone().lockScreenManager().send<"lockScreenViewControllerWillDismiss">();
        return story(before);
    }
    static Lines finishUnlock(BOOL* answer = nullptr, int source = 2, objc::handle given = {})
    {
        std::size_t const before = phone().trace().count();
        BOOL const answered =
            phone().lockScreenManager().send<"_finishUIUnlockFromSource:withOptions:", BOOL>(source, given);
        if (answer)
            *answer = answered;
        return story(before);
    }
};

TEST_F(WaitingActions, OfOtherApplicationsRunAtTheDismissal)
{
    bootUnlocked();
    for (Row const& row : kRows)
        for (BOOL const stays : { BOOL(false), BOOL(true) }) {
            SCOPED_TRACE(row.code);
            stripAnswers() = { row.code, stays };
            Lines expected { kWillDismiss, "strip actionState" };
            addIfAny(expected, row.dismissal);
            EXPECT_EQ(willDismiss(), expected);
        }
}

TEST_F(WaitingActions, AreFollowedByTheEndOfTheOverlay)
{
    bootUnlocked();
    showOverlay();
    for (Row const& row : kRows) {
        SCOPED_TRACE(row.code);
        stripAnswers() = { row.code, true };
        Lines expected { kWillDismiss, "strip actionState" };
        addIfAny(expected, row.dismissal);
        expected.push_back("overlay makeBannerGone");
        EXPECT_EQ(willDismiss(), expected);

        expected = { "strip getShouldStayAtLS", "strip actionState" };
        addIfAny(expected, row.unlockFinish);
        expected.push_back("overlay makeBannerGone");
        EXPECT_EQ(finishUnlock(), expected);
    }
}

TEST_F(WaitingActions, ThatStayOnTheLockScreenRunInsteadOfTheUnlock)
{
    bootUnlocked();
    for (Row const& row : kRows) {
        SCOPED_TRACE(row.code);
        stripAnswers() = { row.code, true };
        Lines expected { "strip getShouldStayAtLS", "strip actionState" };
        addIfAny(expected, row.unlockFinish);
        BOOL answer = true;
        EXPECT_EQ(finishUnlock(&answer), expected);
        EXPECT_FALSE(answer);
    }
}

TEST_F(WaitingActions, AreNotLookedAtWhenTheUnlockIsMeant)
{
    bootUnlocked();
    showOverlay();
    for (Row const& row : kRows) {
        SCOPED_TRACE(row.code);
        stripAnswers() = { row.code, false };
        EXPECT_EQ(finishUnlock(), (Lines { "strip getShouldStayAtLS", kFinish }));
    }
}

TEST_F(WaitingActions, PassTheUnlocksArgumentsAndAnswerOn)
{
    boot(options("15.4"));
    logStripMessages();
    std::size_t const before = phone().trace().count();
    BOOL answer = false;

    finishUnlock(&answer, -7, NSString::stringWithUTF8String("options"));

    auto const own = events("previous", before);
    ASSERT_FALSE(own.empty());
    EXPECT_EQ(own[0]["arguments"], Json::array({ -7, "options" }));
    EXPECT_TRUE(answer);
    phone().advance(1);
    EXPECT_FALSE(phone().isLocked());
}

TEST_F(WaitingActions, ASwallowedUnlockLeavesTheLockScreenUp)
{
    boot(options("15.4"));
    logStripMessages();
    stripAnswers() = { 0, true };

    phone().requestUnlock();
    phone().advance(1);

    EXPECT_TRUE(phone().isLocked());
}

TEST_F(WaitingActions, AreForgottenWhenThePasscodeScreenGoes)
{
    BootOptions system = options("15.4");
    system.passcode = "1234";
    boot(system);
    logStripMessages();
    std::size_t const before = phone().trace().count();

    phone().passcodeController().send<"viewDidDisappear:">(BOOL(true));

    EXPECT_EQ(story(before), kForgetting);
    EXPECT_EQ(events("previous", before)[0]["arguments"], Json::array({ true }));
}

TEST_F(WaitingActions, AreForgottenWhenThePasscodeIsCancelled)
{
    BootOptions system = options("12.4");
    system.passcode = "1234";
    boot(system);
    logStripMessages();
    phone().requestUnlock();
    phone().advance(0.5);
    ASSERT_TRUE(phone().isPasscodeShown());
    std::size_t const before = phone().trace().count();

    ASSERT_TRUE(phone().cancelPasscode());
    phone().advance(1);

    EXPECT_EQ(story(before), kForgetting);
}

TEST_F(WaitingActions, DoNotExistWithoutAStrip)
{
    bootUnlocked(false);
    stripAnswers() = { 1, true };

    EXPECT_EQ(willDismiss(), Lines { kWillDismiss });
    EXPECT_EQ(finishUnlock(), Lines { kFinish });
    std::size_t const before = phone().trace().count();
    phone().passcodeController().send<"viewDidDisappear:">(BOOL(false));
    EXPECT_EQ(story(before), Lines { kDidDisappear });
}

TEST_F(WaitingActions, OutliveTheSwitchInTheSettings)
{
    bootUnlocked();
    ASSERT_TRUE(phone().changeSettings({ { "isEnabled", false } }, {}));
    stripAnswers() = { 1, false };
    EXPECT_EQ(willDismiss(), (Lines { kWillDismiss, "strip actionState", "strip msgWA" }));

    stripAnswers() = { 3, true };
    EXPECT_EQ(finishUnlock(), (Lines { "strip getShouldStayAtLS", "strip actionState", "strip msgSMS" }));

    std::size_t const before = phone().trace().count();
    phone().passcodeController().send<"viewDidDisappear:">(BOOL(false));
    EXPECT_EQ(story(before), kForgetting);
}

}
