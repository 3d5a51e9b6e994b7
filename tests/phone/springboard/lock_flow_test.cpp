#include "phone/springboard/lock_screen.hpp"
#include "tests/phone/springboard/phone_fixture.hpp"

namespace phone {

class LockFlow : public PhoneTest {
protected:
    static void bootWithPasscode()
    {
        BootOptions options;
        options.passcode = "1234";
        boot(options);
    }

    static bool deviceSaysLocked()
    {
        return objc::cls<"SpringBoard">()
            .send<"sharedApplication", objc::handle>()
            .send<"pluginUserAgent", objc::handle>()
            .send<"deviceIsPasscodeLocked", BOOL>();
    }
    static void askToUnlock()
    {
        objc::cls<"SBLockScreenManager">()
            .send<"sharedInstance", objc::handle>()
            .send<"lockScreenViewControllerRequestsUnlock">();
    }
};

TEST_F(LockFlow, FinishesDismissesAndThenIsGone)
{
    bootWithPasscode();
    EXPECT_TRUE(deviceSaysLocked());

    askToUnlock();
    phone().advance(0.5);
    ASSERT_TRUE(phone().isPasscodeShown());
    EXPECT_TRUE(*phone().enterPasscode("1234"));
    phone().advance(1);

    EXPECT_EQ(story(),
        "lock shown, passcode shown, passcode accepted, lock unlockFinished, lock willDismiss, "
        "passcode disappeared, lock dismissed");
    EXPECT_FALSE(phone().isLocked());
    EXPECT_FALSE(deviceSaysLocked());
}

TEST_F(LockFlow, LeavesWithoutAPasscodeScreenWhenThereIsNoPasscode)
{
    boot();
    EXPECT_FALSE(deviceSaysLocked());

    askToUnlock();
    phone().advance(1);

    EXPECT_EQ(story(), "lock shown, lock unlockFinished, lock willDismiss, lock dismissed");
}

TEST_F(LockFlow, RefusesAWrongCodeAndStays)
{
    bootWithPasscode();
    askToUnlock();
    phone().advance(0.5);

    EXPECT_FALSE(*phone().enterPasscode("9999"));
    EXPECT_FALSE(*phone().enterPasscode("0000"));
    phone().advance(1);

    EXPECT_TRUE(phone().isPasscodeShown());
    EXPECT_TRUE(phone().isLocked());
    EXPECT_TRUE(*phone().enterPasscode("1234"));
}

TEST_F(LockFlow, CancellingLeavesTheLockScreenUp)
{
    bootWithPasscode();
    askToUnlock();
    phone().advance(0.5);

    EXPECT_TRUE(phone().cancelPasscode());
    phone().advance(1);

    EXPECT_EQ(story(), "lock shown, passcode shown, passcode cancelled, passcode disappeared");
    EXPECT_TRUE(deviceSaysLocked());
}

TEST_F(LockFlow, TakesNoCodeWithoutAPasscodeScreen)
{
    bootWithPasscode();

    EXPECT_FALSE(phone().enterPasscode("1234"));
    EXPECT_FALSE(phone().cancelPasscode());
}

TEST_F(LockFlow, IgnoresASecondRequestWhileThePasscodeScreenIsUp)
{
    bootWithPasscode();

    askToUnlock();
    askToUnlock();
    phone().advance(0.5);
    askToUnlock();

    EXPECT_EQ(story(), "lock shown, passcode shown");
    EXPECT_EQ(told("unlockRequest", "kind").size(), 3u);
}

TEST_F(LockFlow, ShowsAndHidesNothingForAWillDismissSentByHand)
{
    boot();

    phone().lockScreenManager().send<"lockScreenViewControllerWillDismiss">();
    phone().advance(1);

    EXPECT_EQ(story(), "lock shown");
    EXPECT_TRUE(phone().isLocked());
}

TEST_F(LockFlow, LocksFromTheHomeScreen)
{
    BootOptions options;
    options.locked = false;
    options.passcode = "1234";
    boot(options);
    EXPECT_FALSE(phone().isLocked());

    phone().lock();

    EXPECT_TRUE(phone().isLocked());
    EXPECT_TRUE(phone().isPasscodeLocked());
    EXPECT_EQ(story(), "lock shown");
}

TEST_F(LockFlow, LocksAgainWhileTheLockScreenIsLeaving)
{
    boot();
    askToUnlock();
    phone().advance(0.1);

    phone().lock();
    phone().advance(1);

    EXPECT_TRUE(phone().isLocked());
    EXPECT_EQ(story(), "lock shown, lock unlockFinished, lock willDismiss, lock dismissed, lock shown");
}

TEST_F(LockFlow, AcceptsTheCodeFromThePadsKeys)
{
    bootWithPasscode();
    askToUnlock();
    phone().advance(0.5);

    // Keys 1 to 4 of a pad 390 points wide: pitch 103, centred; the first row's middle at 331, then 422.
    for (CGPoint const key : { CGPoint { 92, 331 }, { 195, 331 }, { 298, 331 }, { 92, 422 } })
        phone().tap(key);
    phone().advance(1);

    EXPECT_FALSE(phone().isLocked());
}

TEST_F(LockFlow, LeavesTheLockScreenForASwipeUpFromTheEdge)
{
    boot();

    phone().drag({ 195, 835 }, { 195, 500 }, 0.3);
    phone().advance(1);

    EXPECT_FALSE(phone().isLocked());
}

TEST_F(LockFlow, LocksByItselfUnlessSomebodyObjects)
{
    BootOptions options;
    options.locked = false;
    boot(options);
    phone().idleTimer().add("test");
    phone().advance(100);
    EXPECT_FALSE(phone().isLocked());

    phone().idleTimer().remove("test");
    phone().advance(IdleTimer::kSeconds + IdleTimer::kDimSeconds + 1);

    EXPECT_TRUE(phone().isLocked());
}

}
