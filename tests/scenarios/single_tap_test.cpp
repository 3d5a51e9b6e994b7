// The eight actions of a single tap, by touches alone, on five systems: on a phone without a passcode, behind
// one, and with nothing to reach the contact by.
#include "tests/scenarios/actions.hpp"

#include <limits>

namespace phone {

namespace {

constexpr int kCodes = 8;

struct TapCase {
    std::string version;
    int code;
};

void PrintTo(TapCase const& each, std::ostream* stream) { *stream << each.version << " code " << each.code; }

std::vector<TapCase> tapCases()
{
    std::vector<TapCase> all;
    for (char const* const version : kStoryVersions)
        for (int code = 0; code < kCodes; ++code)
            all.push_back({ version, code });
    return all;
}

std::string nameOfTap(testing::TestParamInfo<TapCase> const& info)
{
    return versionName(info.param.version) + "Code" + std::to_string(info.param.code);
}

}

class SingleTap : public Story, public testing::WithParamInterface<TapCase> {
protected:
    static int code() { return GetParam().code; }
    static bool opensApp() { return actionOfTap(code()).group == ActionGroup::messagingApp; }
    static bool isCall() { return actionOfTap(code()).group == ActionGroup::call; }
    static Effects action() { return actionOfTap(code()).atOnce + actionOfTap(code()).later; }

    static void bootPhone(bool hasPasscode, bool validates = false, Json contact = annasEntry())
    {
        auto options = Story::options(GetParam().version,
            { { "singleTapAction", code() }, { "askBeforeCall", false },
                { "validateUnlockBeforeCall", validates } },
            Json::array({ contact }));
        if (hasPasscode)
            options.passcode = kStoryPasscode;
        boot(options);
    }

    static Effects afterThePasscode()
    {
        Effects const accepted { "passcode accepted" };
        if (!opensApp())
            return accepted + action() + Effects { "passcode disappeared" };
        return accepted + Effects { "lock unlockFinished", "lock willDismiss" } + action()
            + Effects { "passcode disappeared", "lock dismissed" };
    }

    // The tap itself, up to what the phone does about it within a second.
    static Effects tapped()
    {
        touch(contactButton());
        wait();
        return effects();
    }
};

TEST_P(SingleTap, RunsAtOnceOnAPhoneWithoutPasscode)
{
    bootPhone(false);

    Effects const start { "sound 1519", "passcodeTest no" };
    Effects expected = start + action();
    if (opensApp()) {
        Effects const unlocked { "unlockRequest", "lock unlockFinished", "lock willDismiss" };
        expected = start + unlocked + action() + Effects { "lock dismissed" };
    }
    EXPECT_EQ(tapped(), expected);
    EXPECT_EQ(phone().isLocked(), !opensApp());
}

TEST_P(SingleTap, DoesNothingWithoutATarget)
{
    bootPhone(false, true, emptyEntry());

    EXPECT_EQ(tapped(), (Effects { "sound 1519", "passcodeTest no" }));
}

TEST_P(SingleTap, DoesNothingWithoutATargetBehindAPasscode)
{
    bootPhone(true, true, emptyEntry());

    EXPECT_EQ(tapped(), (Effects { "sound 1519", "passcodeTest yes" }));
    EXPECT_FALSE(phone().isPasscodeShown());
}

TEST_P(SingleTap, WaitsForThePasscode)
{
    bootPhone(true, true);
    Effects const asked { "sound 1519", "passcodeTest yes", "unlockRequest", "passcode shown" };
    EXPECT_EQ(tapped(), asked);

    typePasscode();
    wait();

    EXPECT_EQ(effects(), afterThePasscode());
    EXPECT_EQ(phone().isLocked(), !opensApp());
    EXPECT_FALSE(phone().isPasscodeLocked());
}

TEST_P(SingleTap, CallsAtOnceBehindAPasscodeUnlessValidating)
{
    bootPhone(true, false);

    Effects const start { "sound 1519", "passcodeTest yes" };
    if (isCall()) {
        EXPECT_EQ(tapped(), start + action());
        EXPECT_TRUE(phone().isPasscodeLocked());
        return;
    }
    EXPECT_EQ(tapped(), start + Effects({ "unlockRequest", "passcode shown" }));
    typePasscode();
    wait();
    EXPECT_EQ(effects(), afterThePasscode());
    EXPECT_EQ(phone().isLocked(), !opensApp());
}

TEST_P(SingleTap, IsForgottenWhenThePasscodeIsCancelled)
{
    bootPhone(true, true);
    tapped();

    cancelPasscode();
    wait();
    EXPECT_EQ(effects(), (Effects { "passcode cancelled", "passcode disappeared" }));

    // A later unlock is an unlock and nothing else.
    phone().requestUnlock();
    wait();
    typePasscode();
    wait();
    EXPECT_EQ(effects(),
        (Effects { "unlockRequest", "passcode shown", "passcode accepted", "lock unlockFinished",
            "lock willDismiss", "passcode disappeared", "lock dismissed" }));
    EXPECT_FALSE(phone().isLocked());
}

TEST_P(SingleTap, SurvivesAWrongPasscode)
{
    bootPhone(true, true);
    tapped();

    typePasscode("9999");
    wait();
    EXPECT_EQ(effects(), (Effects { "passcode wrong" }));
    EXPECT_TRUE(phone().isPasscodeShown());

    typePasscode();
    wait();
    EXPECT_FALSE(only(effects(), { "openURL", "siri", "present" }).empty());
}

INSTANTIATE_TEST_SUITE_P(EverySystem, SingleTap, testing::ValuesIn(tapCases()), nameOfTap);

class SingleTapBeyond : public Story, public testing::WithParamInterface<int> { };

// It is felt and seen, and the lock is not even looked at.
TEST_P(SingleTapBeyond, TheCodesDoesNothing)
{
    auto options = Story::options("15.4", { { "singleTapAction", GetParam() } });
    options.passcode = kStoryPasscode;
    boot(options);

    std::size_t const before = phone().trace().count();

    touch(contactButton());
    wait();

    EXPECT_EQ(effects(), Effects { "sound 1519" });
    int fadings = 0;
    for (Json const& event : phone().trace().events(before))
        fadings += event["kind"] == "animate" && !event.contains("own") && event["duration"] == 0.2;
    EXPECT_EQ(fadings, 2);
}

INSTANTIATE_TEST_SUITE_P(Values, SingleTapBeyond,
    testing::Values(8, 9, 255, 256, -1, -8, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()),
    [](auto const& info) { return "Row" + std::to_string(info.index); });

}
