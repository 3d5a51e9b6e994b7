// The eight actions of a single tap, by touches alone, on five systems: on a phone without a passcode, behind
// one, and with nothing to reach the contact by.
#include "tests/scenarios/story.hpp"

namespace phone {

namespace {

constexpr char const* kVersions[] { "12.4", "13.7", "14.8", "15.4", "16.1" };
constexpr int kCodes = 8;

enum class Group { call, messagingApp, composer };

Group groupOf(int code)
{
    if (code == 0 || code == 6)
        return Group::call;
    return code == 5 || code == 7 ? Group::composer : Group::messagingApp;
}

// What the action itself does on Anna, without confirmation.
Effects actionOf(int code)
{
    switch (code) {
    case 0: return { "openURL tel:+44207946-0958", "completion yes" };
    case 1: return { "openURL whatsapp://send?phone=+44207946-0958", "completion yes" };
    case 2: return { "openURL tg://msg?&to=+442079460958", "completion yes" };
    case 3: return { "siri call +44 20 7946-0958 in whatsapp" };
    case 4: return { "siri call +44 20 7946-0958 in telegram" };
    case 5:
        return { "canSend MFMessageComposeViewController yes", "hold CVL",
            "MFMessageComposeViewControllerCVL setMessageComposeDelegate:(CVLView)",
            "MFMessageComposeViewControllerCVL setRecipients:([\"+44 20 7946-0958\"])",
            "MFMessageComposeViewControllerCVL becomeFirstResponder()",
            "present MFMessageComposeViewControllerCVL" };
    case 6: return { "openURL facetime:+44207946-0958", "release CVL", "completion yes" };
    default:
        return { "canSend MFMailComposeViewControllerCVL yes", "hold CVL",
            "MFMailComposeViewControllerCVL setMailComposeDelegate:(CVLView)",
            "MFMailComposeViewControllerCVL setToRecipients:([\"anna@example.com\"])",
            "present MFMailComposeViewControllerCVL" };
    }
}

Effects operator+(Effects first, Effects const& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

struct Case {
    std::string version;
    int code;
};

void PrintTo(Case const& each, std::ostream* stream) { *stream << each.version << " code " << each.code; }

std::vector<Case> cases()
{
    std::vector<Case> all;
    for (char const* const version : kVersions)
        for (int code = 0; code < kCodes; ++code)
            all.push_back({ version, code });
    return all;
}

std::string nameOf(testing::TestParamInfo<Case> const& info)
{
    std::string version = info.param.version;
    version[version.find('.')] = '_';
    return "iOS" + version + "Code" + std::to_string(info.param.code);
}

}

class SingleTap : public Story, public testing::WithParamInterface<Case> {
protected:
    static int code() { return GetParam().code; }

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
    Effects expected = start + actionOf(code());
    if (groupOf(code()) == Group::messagingApp) {
        Effects const unlocked { "unlockRequest", "lock unlockFinished", "lock willDismiss" };
        expected = start + unlocked + actionOf(code()) + Effects { "lock dismissed" };
    }
    EXPECT_EQ(tapped(), expected);
    EXPECT_EQ(phone().isLocked(), groupOf(code()) != Group::messagingApp);
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

    Effects expected { "passcode accepted" };
    if (groupOf(code()) == Group::messagingApp)
        expected = expected + Effects { "lock unlockFinished", "lock willDismiss" } + actionOf(code())
            + Effects { "passcode disappeared", "lock dismissed" };
    else
        expected = expected + actionOf(code()) + Effects { "passcode disappeared" };
    EXPECT_EQ(effects(), expected);
    EXPECT_EQ(phone().isLocked(), groupOf(code()) != Group::messagingApp);
    EXPECT_FALSE(phone().isPasscodeLocked());
}

TEST_P(SingleTap, CallsAtOnceBehindAPasscodeUnlessValidating)
{
    bootPhone(true, false);

    Effects const start { "sound 1519", "passcodeTest yes" };
    if (groupOf(code()) == Group::call)
        EXPECT_EQ(tapped(), start + actionOf(code()));
    else
        EXPECT_EQ(tapped(), start + Effects({ "unlockRequest", "passcode shown" }));
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

INSTANTIATE_TEST_SUITE_P(EverySystem, SingleTap, testing::ValuesIn(cases()), nameOf);

}
