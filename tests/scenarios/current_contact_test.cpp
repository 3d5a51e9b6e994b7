// The contact on which an action works: what a tap takes from its button, what each action leaves behind, and
// what comes of a contact, or a strip, that has nothing.
#include "tests/scenarios/actions.hpp"

#include "objc/hook.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/substrate.hpp"

namespace phone {

namespace {

// A contact's button, recorded when it is asked for one of its strings.
template <objc::fixed_string Selector>
struct Asked {
    static inline objc::original<NSString(objc::handle, SEL)> original;
    static NSString replacement(objc::handle self, SEL cmd)
    {
        deviceTrace().record("asked", { { "selector", Selector.c_str() } });
        return original(self, cmd);
    }
    static void hook()
    {
        auto const [replacement, slot] = objc::hook<Asked>();
        MSHookMessageEx(objc_getClass("CVLButton"), objc::selector<Selector>(), replacement, slot);
    }
};

}

class CurrentContact : public Story {
protected:
    static void bootPhone(Json settings, Json contacts = Json::array({ annasEntry() }))
    {
        settings["siriHebrew"] = true;
        boot(options("15.4", settings, contacts));
    }
    template <objc::fixed_string Action>
    static Effects ran()
    {
        forget();
        phone().strip().send<Action>();
        wait();
        return only(effects(),
            { "openURL", "alert", "MFMessageComposeViewControllerCVL", "MFMailComposeViewControllerCVL",
                "siri" });
    }
    static std::string recipients(Effects const& effects)
    {
        for (std::string const& line : effects)
            if (auto const at = line.find("ecipients:("); at != line.npos)
                return line.substr(at + 11, line.size() - at - 12);
        return "none";
    }
    // The strings as the actions show them: name in the Telegram phrase, number in the WhatsApp one.
    static std::string siriText(int app)
    {
        forget();
        phone().strip().send<"callUsingSiri:">(app);
        wait();
        Effects const said = only(effects(), { "siri" });
        return said.empty() ? "" : said.front().substr(5);
    }
    static std::string phrase(std::string const& subject, std::string const& app)
    {
        return "תתקשרי ל" + subject + " ב" + app;
    }
    static void chooseInMenu(char const* entry)
    {
        hold(contactButton());
        wait();
        touch(alertRow(entry));
        wait();
    }
    // Number and name of Anna, as a tap that asks before it calls leaves them.
    static void captureAnna()
    {
        touch(contactButton());
        wait();
        touch(alertRow("No"));
        wait();
    }
};

TEST_F(CurrentContact, KeepsItsStringsAfterNo)
{
    bootPhone({ { "singleTapAction", 0 } });
    captureAnna();

    EXPECT_EQ(ran<"msgWA">(), Effects { "openURL whatsapp://send?phone=+44207946-0958" });
}

TEST_F(CurrentContact, LosesItsNumberWithAWhatsAppMessageAndKeepsItsName)
{
    bootPhone({ { "singleTapAction", 0 } });
    captureAnna();
    ran<"msgWA">();

    EXPECT_EQ(ran<"msgWA">(), (Effects { "openURL whatsapp://send?phone=" }));
    EXPECT_EQ(siriText(1), phrase("Anna", "telegram"));
}

TEST_F(CurrentContact, LosesItsNumberWithATelegramMessageAndKeepsItsName)
{
    bootPhone({ { "singleTapAction", 0 } });
    captureAnna();
    ran<"msgTG">();

    EXPECT_EQ(ran<"msgTG">(), (Effects { "openURL tg://msg?&to=" }));
    EXPECT_EQ(siriText(1), phrase("Anna", "telegram"));
}

TEST_F(CurrentContact, LosesNumberAndNameWithACallBySiri)
{
    bootPhone({ { "singleTapAction", 0 } });
    captureAnna();

    EXPECT_EQ(siriText(0), phrase("+44 20 7946-0958", "whatsapp"));
    EXPECT_EQ(siriText(0), phrase("", "whatsapp"));
    EXPECT_EQ(siriText(1), phrase("", "telegram"));
}

TEST_F(CurrentContact, LosesNumberAndNameWithACall)
{
    bootPhone({ { "singleTapAction", 0 } });
    touch(contactButton());
    wait();
    touch(alertRow("Yes"));
    wait();
    touch(button("End"));
    wait();
    EXPECT_EQ(siriText(0), phrase("", "whatsapp"));
    touch(button("Siri"));
    wait();

    captureAnna();
    EXPECT_EQ(ran<"callFacetime">(),
        Effects {
            "alert Confirmation: You are about to facetime call:\nAnna, +44 20 7946-0958\n Are you sure?" });
    touch(alertRow("Yes"));
    wait();
    EXPECT_EQ(siriText(1), phrase("", "telegram"));
}

TEST_F(CurrentContact, LosesItsNumberWithATextAndItsAddressWithAMail)
{
    bootPhone({ { "singleTapAction", 9 } });
    chooseInMenu("New SMS Message");
    touch(button("Cancel"));
    wait();
    EXPECT_EQ(recipients(ran<"msgSMS">()), "[\"\"]");
    touch(button("Cancel"));
    wait();

    chooseInMenu("Email (anna@example.com)");
    touch(button("Cancel"));
    wait();
    EXPECT_EQ(recipients(ran<"sndEmail">()), "[\"\"]");
}

TEST_F(CurrentContact, LosesWhatItCannotSendTo)
{
    bootPhone({ { "singleTapAction", 9 } });
    ASSERT_TRUE(phone().setAvailable("messages", false));
    ASSERT_TRUE(phone().setAvailable("mail", false));
    chooseInMenu("New SMS Message");
    chooseInMenu("Email (anna@example.com)");
    ASSERT_TRUE(phone().setAvailable("messages", true));
    ASSERT_TRUE(phone().setAvailable("mail", true));

    EXPECT_EQ(recipients(ran<"msgSMS">()), "[\"\"]");
    touch(button("Cancel"));
    wait();
    EXPECT_EQ(recipients(ran<"sndEmail">()), "[\"\"]");
}

TEST_F(CurrentContact, IsNobodyBeforeTheFirstTap)
{
    bootPhone({ { "askBeforeCall", false } });

    EXPECT_EQ(recipients(ran<"msgSMS">()), "[]");
    touch(button("Cancel"));
    wait();
    EXPECT_EQ(recipients(ran<"sndEmail">()), "[]");
    touch(button("Cancel"));
    wait();
    EXPECT_EQ(ran<"msgTG">(), Effects { "openURL tg://msg?&to=" });
    EXPECT_EQ(ran<"callPhone">(), Effects { "openURL tel:" });
}

TEST_F(CurrentContact, TakesANilTargetForOne)
{
    bootPhone({ { "singleTapAction", 7 } });
    UIView const anna = contactButton();
    anna.send<"setEmailAddr:">(NSString {});

    touch(anna);
    wait();

    EXPECT_EQ(recipients(effects()), "[]");
}

TEST_F(CurrentContact, TakesANilNumberForOne)
{
    bootPhone({ { "singleTapAction", 1 } });
    UIView const anna = contactButton();
    anna.send<"setPhoneNumber:">(NSString {});

    touch(anna);
    wait();

    EXPECT_EQ(only(effects(), { "unlockRequest", "openURL" }),
        (Effects { "unlockRequest", "openURL whatsapp://send?phone=" }));
}

TEST_F(CurrentContact, TakesANilNumberForOneBehindAPasscode)
{
    auto options = Story::options("15.4", { { "singleTapAction", 5 } });
    options.passcode = kStoryPasscode;
    boot(options);
    UIView const anna = contactButton();
    anna.send<"setPhoneNumber:">(NSString {});

    touch(anna);
    wait();
    EXPECT_EQ(effects(), (Effects { "sound 1519", "passcodeTest yes", "unlockRequest", "passcode shown" }));
    typePasscode();
    wait();

    EXPECT_EQ(recipients(effects()), "[]");
}

TEST_F(CurrentContact, IsWrittenToOnlyWhereItHasAnAddress)
{
    Json contact = annasEntry();
    contact["contactEmail"] = "";
    bootPhone({ { "singleTapAction", 7 } }, Json::array({ contact }));
    touch(contactButton());
    wait();
    EXPECT_EQ(effects(), (Effects { "sound 1519", "passcodeTest no" }));
}

TEST_F(CurrentContact, IsCalledWithoutAnAddress)
{
    Json contact = annasEntry();
    contact["contactEmail"] = "";
    bootPhone({ { "singleTapAction", 0 }, { "askBeforeCall", false } }, Json::array({ contact }));
    touch(contactButton());
    wait();
    EXPECT_EQ(only(effects(), { "openURL" }), Effects { "openURL tel:+44207946-0958" });
}

TEST_F(CurrentContact, KeepsItsStringsWhereThereIsNoSiri)
{
    auto options = Story::options("15.4", { { "singleTapAction", 0 } });
    options.absent = { "SBAssistantController._mainScreenSiriPresentation" };
    boot(options);
    captureAnna();

    EXPECT_EQ(siriText(0), "");
    EXPECT_EQ(ran<"msgTG">(), Effects { "openURL tg://msg?&to=+442079460958" });
}

TEST_F(CurrentContact, GivesSiriNoTextForAnAppThatIsNone)
{
    bootPhone({ { "singleTapAction", 0 } });
    captureAnna();

    forget();
    phone().strip().send<"callUsingSiri:">(2);
    wait();
    EXPECT_EQ(effects(), Effects { "siri null" });
    EXPECT_EQ(siriText(0), phrase("", "whatsapp"));
    EXPECT_EQ(siriText(1), phrase("", "telegram"));
}

namespace {

struct Capture {
    int code;
    char const* entry;   // of the menu
    bool takesName;
};
constexpr Capture kCaptures[] {
    { 0, "Call Contact", true },
    { 1, "Send WhatsApp Message", false },
    { 2, "Send Telegram Message", false },
    { 3, "Call via WhatsApp", false },
    { 4, "Call via Telegram", true },
    { 5, "New SMS Message", false },
    { 6, "Facetime Call", true },
    { 7, "Email (bora@example.com)", false },
};

}

// An action takes the strings that it needs and leaves the others as they were.
class CapturedStrings : public CurrentContact, public testing::WithParamInterface<Capture> {
protected:
    // Anna's number and name are captured, and nothing is waiting.
    static void bootAfterAnna(int tapCode)
    {
        Json bora = annasEntry();
        bora["contactFirstName"] = "Bora";
        bora["contactPhoneNumber"] = "+1 555 0100";
        bora["contactEmail"] = "bora@example.com";
        auto options = Story::options("15.4", { { "singleTapAction", tapCode }, { "siriHebrew", true } },
            Json::array({ annasEntry(), bora }));
        options.passcode = kStoryPasscode;
        boot(options);
        hold(contactButton(0));
        wait();
        touch(alertRow(tapCode == 0 ? "Facetime Call" : "Call Contact"));
        wait();
        touch(alertRow("No"));
        wait();
    }
    // What the phone was asked for, in order.
    static std::vector<std::string> questions(std::size_t since)
    {
        std::vector<std::string> all;
        for (Json const& event : phone().trace().events(since))
            if (event["kind"] == "asked")
                all.push_back(event["selector"]);
            else if (event["kind"] == "passcodeTest")
                all.push_back("passcodeTest");
        return all;
    }
    static std::vector<std::string> expectedQuestions()
    {
        if (GetParam().code == 7)
            return { "getEmailAddr", "passcodeTest" };
        if (GetParam().takesName)
            return { "getPhoneNumber", "getContactName", "passcodeTest" };
        return { "getPhoneNumber", "passcodeTest" };
    }
    static void listen()
    {
        Asked<"getPhoneNumber">::hook();
        Asked<"getContactName">::hook();
        Asked<"getEmailAddr">::hook();
    }
    static std::string nameOfWhoIsNext() { return GetParam().takesName ? "Bora" : "Anna"; }
    static std::string numberOfWhoIsNext()
    {
        return GetParam().code == 7 ? "+44 20 7946-0958" : "+1 555 0100";
    }
};

TEST_P(CapturedStrings, AreThoseOfATap)
{
    bootAfterAnna(GetParam().code);

    touch(contactButton(1));
    wait();

    EXPECT_EQ(siriText(1), phrase(nameOfWhoIsNext(), "telegram"));
}

TEST_P(CapturedStrings, AreThoseOfAMenuEntry)
{
    bootAfterAnna(9);

    hold(contactButton(1));
    wait();
    touch(alertRow(GetParam().entry));
    wait();

    EXPECT_EQ(siriText(1), phrase(nameOfWhoIsNext(), "telegram"));
}

TEST_P(CapturedStrings, AreTheNumberOfATapUnlessItWritesAMail)
{
    bootAfterAnna(GetParam().code);

    touch(contactButton(1));
    wait();

    EXPECT_EQ(siriText(0), phrase(numberOfWhoIsNext(), "whatsapp"));
}

TEST_P(CapturedStrings, AreTheNumberOfAMenuEntryUnlessItWritesAMail)
{
    bootAfterAnna(9);

    hold(contactButton(1));
    wait();
    touch(alertRow(GetParam().entry));
    wait();

    EXPECT_EQ(siriText(0), phrase(numberOfWhoIsNext(), "whatsapp"));
}

TEST_P(CapturedStrings, AreTakenByATapBeforeItLooksAtTheLock)
{
    bootPhone({ { "singleTapAction", GetParam().code } });
    listen();
    std::size_t const before = phone().trace().count();

    touch(contactButton());
    wait();

    EXPECT_EQ(questions(before), expectedQuestions());
}

TEST_P(CapturedStrings, AreTakenByAMenuEntryBeforeItLooksAtTheLock)
{
    bootAfterAnna(9);
    hold(contactButton(1));
    wait();
    listen();
    std::size_t const before = phone().trace().count();

    touch(alertRow(GetParam().entry));
    wait();

    EXPECT_EQ(questions(before), expectedQuestions());
}

INSTANTIATE_TEST_SUITE_P(Every, CapturedStrings, testing::ValuesIn(kCaptures),
    [](auto const& info) { return "Code" + std::to_string(info.param.code); });

}
