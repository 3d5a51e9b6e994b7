// The messages that an action consists of, in their order: beside the effects those to the strip itself and to the system's
// objects, which leave no other trace.
#include "tests/scenarios/actions.hpp"

#include "objc/hook.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/substrate.hpp"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace phone {

namespace {

std::string written(objc::handle object)
{
    if (!object)
        return "nil";
    NSString const text = objc::cast<NSString>(object);
    return text ? toString(text) : "object";
}
std::string written(BOOL flag) { return flag ? "yes" : "no"; }
// Its own process by name: what is recorded is the same in each.
std::string written(int number) { return number == getpid() ? "own process" : std::to_string(number); }
std::string written(NSInteger number) { return std::to_string(number); }
std::string written(double) { return "number"; }

std::string receiver(objc::handle object)
{
    if (!object.responds<"isViewNonLS">())
        return classNameOf(object);
    return object.send<"isViewNonLS", BOOL>() ? "overlay" : "strip";
}

// A message, recorded as it arrives and then carried out.
template <objc::fixed_string Class, objc::fixed_string Selector, class R, class... A>
struct Heard {
    static inline objc::original<R(objc::handle, SEL, A...)> original;
    static R replacement(objc::handle self, SEL cmd, A... arguments)
    {
        std::string line = receiver(self) + ' ' + sel_getName(cmd);
        ((line += ' ' + written(arguments)), ...);
        deviceTrace().record("heard", { { "line", line } });
        return original(self, cmd, arguments...);
    }
    static void install()
    {
        auto const [code, slot] = objc::hook<Heard>();
        MSHookMessageEx(objc_getClass(Class.c_str()), objc::selector<Selector>(), code, slot);
    }
};

void listenToStrips()
{
    Heard<"CVLView", "makeBannerGone", void>::install();
    Heard<"CVLView", "windowForPrompts:", void, objc::handle>::install();
    Heard<"CVLView", "callUsingSiri:", void, std::int32_t>::install();
}

void listenToSiri()
{
    Heard<"SiriPresentationOptions", "setWakeScreen:", void, BOOL>::install();
    Heard<"SiriPresentationOptions", "setHideOtherWindowsDuringAppearance:", void, BOOL>::install();
    Heard<"SASRequestOptions", "initWithRequestSource:uiPresentationIdentifier:", objc::handle, NSInteger,
        objc::handle>::install();
    Heard<"SASRequestOptions", "setButtonDownTimestamp:", void, double>::install();
    Heard<"SASRequestOptions", "setText:", void, objc::handle>::install();
    Heard<"SASRequestOptions", "setContextAppInfosForSiriViewController:", void, objc::handle>::install();
    Heard<"AFApplicationInfo", "setPid:", void, int>::install();
    Heard<"AFApplicationInfo", "setIdentifier:", void, objc::handle>::install();
}

// How a URL is handed over.
struct OpenUrl {
    static inline objc::original<void(objc::handle, SEL, objc::handle, objc::handle, objc::handle)> original;
    static void replacement(
        objc::handle self, SEL cmd, objc::handle url, objc::handle options, objc::handle completion)
    {
        NSDictionary const dictionary = objc::cast<NSDictionary>(options);
        EXPECT_TRUE(dictionary);
        EXPECT_EQ((dictionary.send<"count", NSUInteger>()), 0u);
        EXPECT_TRUE(completion);
        ++s_calls;
        original(self, cmd, url, options, completion);
    }
    static inline int s_calls = 0;
};

// Asks Siri for a call by the current contact when the strip is first told to go.
struct AskAsTheStripGoes {
    static inline objc::original<void(objc::handle, SEL)> original;
    static void replacement(objc::handle self, SEL cmd)
    {
        if (int const app = std::exchange(s_app, -1); app >= 0)
            self.send<"callUsingSiri:">(app);
        original(self, cmd);
    }
    static inline int s_app = -1;   // none, or once asked
};

// To whom a composer writes: a list of their own, which may be changed.
struct SetRecipients {
    static inline objc::original<void(objc::handle, SEL, objc::handle)> original;
    static void replacement(objc::handle self, SEL cmd, objc::handle recipients)
    {
        EXPECT_TRUE(objc::cast<NSMutableArray>(recipients));
        EXPECT_EQ((recipients.send<"count", NSUInteger>()), 1u);
        ++s_calls;
        original(self, cmd, recipients);
    }
    static inline int s_calls = 0;
};

// Sends the strip a message when it first presents something.
struct AskAsItPresents {
    static inline objc::original<void(objc::handle, SEL, objc::handle, BOOL, objc::handle)> original;
    static void replacement(
        objc::handle self, SEL cmd, objc::handle presented, BOOL animated, objc::handle completion)
    {
        if (auto const ask = std::exchange(s_ask, nullptr))
            ask(phone().strip());
        original(self, cmd, presented, animated, completion);
    }
    static inline void (*s_ask)(UIView strip) = nullptr;
};

template <class Hook>
void install(char const* className, SEL selector)
{
    auto const [code, slot] = objc::hook<Hook>();
    MSHookMessageEx(objc_getClass(className), selector, code, slot);
}

Effects const kTapped { "sound 1519", "passcodeTest no" };

}

class ActionOrder : public Story {
protected:
    static void bootPhone(int tapCode, bool asks, Json contact = annasEntry())
    {
        boot(options(
            "15.4", { { "singleTapAction", tapCode }, { "askBeforeCall", asks } }, Json::array({ contact })));
        listenToStrips();
        forget();
    }
    static Effects tapped()
    {
        touch(contactButton());
        wait();
        return effects();
    }
    // A call of the contact who was touched last, which is answered with yes.
    static void callFrom(UIView strip)
    {
        {
            AutoreleasePool const pool;   // keeps no alert, and with it no window, beyond the message
            strip.send<"callPhone">();
        }
        wait();
        touch(alertRow("Yes"));
        wait();
    }
    static Effects told() { return only(effects(), { "openURL", "completion", "siri", "strip", "overlay" }); }
};

TEST_F(ActionOrder, OfAPhoneCall)
{
    bootPhone(0, false);
    EXPECT_EQ(tapped(),
        kTapped + Effects({ "openURL tel:+44207946-0958", "strip makeBannerGone", "completion yes" }));
}

TEST_F(ActionOrder, OfAFacetimeCall)
{
    bootPhone(6, false);
    EXPECT_EQ(tapped(),
        kTapped
            + Effects({ "openURL facetime:+44207946-0958", "strip makeBannerGone", "release CVL",
                "completion yes" }));
}

TEST_F(ActionOrder, OfAPhoneCallThatIsAskedAbout)
{
    bootPhone(0, true);
    EXPECT_EQ(tapped(),
        kTapped
            + Effects({ "strip windowForPrompts: object",
                "alert Confirmation: You are about to call:\nAnna, +44 20 7946-0958\n Are you sure?",
                "release CVL" }));
    touch(alertRow("Yes"));
    wait();
    EXPECT_EQ(effects(),
        (Effects { "dismiss UIAlertController", "openURL tel:+44207946-0958", "strip makeBannerGone",
            "completion yes" }));
}

TEST_F(ActionOrder, OfAFacetimeCallThatIsAskedAbout)
{
    bootPhone(6, true);
    EXPECT_EQ(tapped(),
        kTapped
            + Effects({ "strip windowForPrompts: object",
                "alert Confirmation: You are about to facetime call:\nAnna, +44 20 7946-0958\n Are you sure?",
                "release CVL" }));
    // Yes lifts no assertion: that was done when the alert came up.
    touch(alertRow("Yes"));
    wait();
    EXPECT_EQ(effects(),
        (Effects { "dismiss UIAlertController", "openURL facetime:+44207946-0958", "strip makeBannerGone",
            "completion yes" }));
}

TEST_F(ActionOrder, OfAFacetimeCallThatIsRefused)
{
    bootPhone(6, true);
    tapped();
    touch(alertRow("No"));
    wait();
    EXPECT_EQ(effects(), Effects { "dismiss UIAlertController" });
}

// The alert keeps the strip that asked: not the one made last, nor the lock screen's.
TEST_F(ActionOrder, OfACallFromTheOverlayEndsWithTheOverlaysStrip)
{
    bootPhone(0, true);
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
    wait();
    UIView const overlay = phone().overlay();
    ASSERT_TRUE(overlay);
    forget();

    callFrom(phone().strip());
    EXPECT_EQ(told(),
        (Effects {
            "strip windowForPrompts: object", "openURL tel:", "strip makeBannerGone", "completion yes" }));
    ASSERT_TRUE(phone().overlay());
    touch(button("End"));
    wait();

    forget();
    callFrom(overlay);
    EXPECT_EQ(told(),
        (Effects { "overlay windowForPrompts: object", "openURL tel:", "overlay makeBannerGone",
            "completion yes" }));
}

TEST_F(ActionOrder, OfAWhatsAppMessage)
{
    bootPhone(1, true);
    EXPECT_EQ(only(tapped(), { "openURL", "completion", "strip", "alert", "hold", "release" }),
        (Effects {
            "openURL whatsapp://send?phone=+44207946-0958", "completion yes", "strip makeBannerGone" }));
}

TEST_F(ActionOrder, OfATelegramMessageThatNobodyTakes)
{
    bootPhone(2, true);
    ASSERT_TRUE(phone().setAvailable("telegram", false));
    EXPECT_EQ(only(tapped(), { "openURL", "completion", "strip", "alert", "hold", "release" }),
        (Effects { "openURL tg://msg?&to=+442079460958", "completion no", "strip makeBannerGone" }));
}

TEST_F(ActionOrder, OfACallBySiri)
{
    bootPhone(4, true);
    listenToSiri();
    Effects lines = tapped();
    std::erase_if(
        lines, [](std::string const& line) { return line.starts_with("lock ") || line == "unlockRequest"; });
    std::string const text = "call +44 20 7946-0958 in telegram";
    EXPECT_EQ(lines,
        kTapped
            + Effects({ "strip callUsingSiri: 1", "SiriPresentationOptions setWakeScreen: no",
                "SiriPresentationOptions setHideOtherWindowsDuringAppearance: no",
                "SASRequestOptions initWithRequestSource:uiPresentationIdentifier: 0 com.apple.siri.Siriland",
                "SASRequestOptions setButtonDownTimestamp: number", "SASRequestOptions setText: " + text,
                "AFApplicationInfo setPid: own process",
                "AFApplicationInfo setIdentifier: com.apple.springboard",
                "SASRequestOptions setContextAppInfosForSiriViewController: object", "siri " + text,
                "strip makeBannerGone" }));
}

TEST_F(ActionOrder, OfACallInWhatsApp)
{
    bootPhone(3, true);
    EXPECT_EQ(only(tapped(), { "siri", "strip", "alert", "hold", "release" }),
        (Effects {
            "strip callUsingSiri: 0", "siri call +44 20 7946-0958 in whatsapp", "strip makeBannerGone" }));
}

TEST_F(ActionOrder, OfACallInNoAppHasNoText)
{
    bootPhone(9, true);
    listenToSiri();
    for (std::int32_t const app : { 2, -1 }) {
        phone().strip().send<"callUsingSiri:">(app);
        wait();
        Effects const lines = effects();
        EXPECT_EQ(std::ranges::count(lines, "siri null"), 1) << app;
        EXPECT_EQ(std::ranges::count(lines, "strip makeBannerGone"), 1) << app;
        for (std::string const& line : lines)
            EXPECT_EQ(line.find("setText:"), line.npos) << line;
    }
}

TEST_F(ActionOrder, OfATextEndsWhenTheComposerIsThere)
{
    bootPhone(5, true);
    touch(contactButton());
    EXPECT_EQ(effects(), kTapped + actionOfTap(5).atOnce);
    wait();
    EXPECT_EQ(effects(), Effects { "strip makeBannerGone" });

    touch(button("Cancel"));
    wait();
    EXPECT_EQ(effects(), (Effects { "release CVL", "dismiss MFMessageComposeViewControllerCVL" }));
}

TEST_F(ActionOrder, OfAMailEndsWhenTheComposerIsThere)
{
    bootPhone(7, true);
    touch(contactButton());
    EXPECT_EQ(effects(), kTapped + actionOfTap(7).atOnce);
    wait();
    EXPECT_EQ(effects(), Effects { "strip makeBannerGone" });

    touch(button("Cancel"));
    wait();
    EXPECT_EQ(effects(), (Effects { "release CVL", "dismiss MFMailComposeViewControllerCVL" }));
}

TEST_F(ActionOrder, OfWhatCannotBeSentLeavesTheStrip)
{
    bootPhone(5, true);
    ASSERT_TRUE(phone().setAvailable("messages", false));
    EXPECT_EQ(tapped(), kTapped + Effects({ "canSend MFMessageComposeViewController no" }));
}

TEST_F(ActionOrder, OfAMailThatCannotBeSentLeavesTheStrip)
{
    bootPhone(7, true);
    ASSERT_TRUE(phone().setAvailable("mail", false));
    EXPECT_EQ(tapped(), kTapped + Effects({ "canSend MFMailComposeViewControllerCVL no" }));
}

TEST_F(ActionOrder, OfATextForgetsTheNumberWhenTheComposerIsPresented)
{
    bootPhone(5, true);
    install<SetRecipients>("MFMessageComposeViewController", objc::selector<"setRecipients:">());
    install<AskAsItPresents>(
        "UIViewController", objc::selector<"presentViewController:animated:completion:">());
    AskAsItPresents::s_ask = [](UIView strip) { strip.send<"callUsingSiri:">(std::int32_t(0)); };

    EXPECT_EQ(only(tapped(), { "siri" }), Effects { "siri call +44 20 7946-0958 in whatsapp" });
    EXPECT_EQ(SetRecipients::s_calls, 1);
}

TEST_F(ActionOrder, OfAMailForgetsTheAddressWhenTheComposerIsPresented)
{
    bootPhone(7, true);
    install<SetRecipients>("MFMailComposeViewController", objc::selector<"setToRecipients:">());
    install<AskAsItPresents>(
        "UIViewController", objc::selector<"presentViewController:animated:completion:">());
    AskAsItPresents::s_ask = [](UIView strip) { strip.send<"sndEmail">(); };

    Effects const lines = tapped();
    EXPECT_EQ(
        std::ranges::count(lines, R"(MFMailComposeViewControllerCVL setToRecipients:(["anna@example.com"]))"),
        2);
    EXPECT_EQ(SetRecipients::s_calls, 2);
}

TEST_F(ActionOrder, HandsEveryUrlOverWithoutOptions)
{
    bootPhone(9, false);
    install<OpenUrl>("UIApplication", objc::selector<"openURL:options:completionHandler:">());
    UIView const strip = phone().strip();
    strip.send<"callPhone">();
    strip.send<"callFacetime">();
    strip.send<"msgWA">();
    strip.send<"msgTG">();
    wait();
    EXPECT_EQ(OpenUrl::s_calls, 4);
}

// However a composer has ended, and whoever says so.
TEST_F(ActionOrder, OfTheEndIsTheSameForEveryResult)
{
    bootPhone(9, true);
    UIView const strip = phone().strip();
    for (NSInteger const result : { 0, 1, 2, 3 }) {
        strip.send<"msgSMS">();
        wait();
        forget();
        strip.send<"messageComposeViewController:didFinishWithResult:">(
            presented("MFMessageComposeViewController"), result);
        EXPECT_EQ(effects(), (Effects { "release CVL", "dismiss MFMessageComposeViewControllerCVL" }));
        Json const dismissal = phone().trace().events().back();
        EXPECT_EQ(dismissal["animated"], true);
        EXPECT_EQ(dismissal["completion"], false);
        wait();

        strip.send<"sndEmail">();
        wait();
        forget();
        strip.send<"mailComposeController:didFinishWithResult:error:">(
            presented("MFMailComposeViewController"), result, objc::handle {});
        EXPECT_EQ(effects(), (Effects { "release CVL", "dismiss MFMailComposeViewControllerCVL" }));
        Json const mailDismissal = phone().trace().events().back();
        EXPECT_EQ(mailDismissal["animated"], true);
        EXPECT_EQ(mailDismissal["completion"], false);
        wait();
    }
}

// What is asked of Siri on a system whose Siri is not where it is looked for: nothing comes of it, and the strip stays.
class NoSiri : public Story, public testing::WithParamInterface<char const*> { };

TEST_P(NoSiri, LeavesTheStrip)
{
    auto options = Story::options("15.4", { { "singleTapAction", 3 } });
    options.absent = { GetParam() };
    boot(options);
    listenToStrips();
    forget();

    touch(contactButton());
    wait();

    EXPECT_EQ(only(effects(), { "siri", "strip" }), Effects { "strip callUsingSiri: 0" });
}

INSTANTIATE_TEST_SUITE_P(Missing, NoSiri,
    testing::Values("SBAssistantController", "SBAssistantController sharedInstance",
        "SBAssistantController._mainScreenSiriPresentation"),
    [](auto const& info) {
        std::string name = info.param;
        std::erase_if(name, [](char letter) { return !std::isalnum(static_cast<unsigned char>(letter)); });
        return name;
    });

// The contact is forgotten before the strip is told to go.
struct Forgotten {
    int tapCode;
    int app;   // of the phrase that names what is left of the contact: 0 the number, 1 the name
};

class ForgottenContact : public Story, public testing::WithParamInterface<Forgotten> { };

TEST_P(ForgottenContact, IsGoneBeforeTheStrip)
{
    boot(options("15.4",
        { { "singleTapAction", GetParam().tapCode }, { "askBeforeCall", false }, { "siriHebrew", true } }));
    install<AskAsTheStripGoes>("CVLView", objc::selector<"makeBannerGone">());
    AskAsTheStripGoes::s_app = GetParam().app;

    touch(contactButton());
    wait();

    EXPECT_EQ(AskAsTheStripGoes::s_app, -1);
    Effects const asked = only(effects(), { "siri" });
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(asked.back(), GetParam().app == 0 ? "siri תתקשרי ל בwhatsapp" : "siri תתקשרי ל בtelegram");
}

INSTANTIATE_TEST_SUITE_P(Every, ForgottenContact,
    testing::Values(Forgotten { 0, 0 }, Forgotten { 0, 1 }, Forgotten { 1, 0 }, Forgotten { 2, 0 },
        Forgotten { 3, 0 }, Forgotten { 4, 0 }, Forgotten { 4, 1 }, Forgotten { 5, 0 }, Forgotten { 6, 0 },
        Forgotten { 6, 1 }),
    [](auto const& info) {
        return "Code" + std::to_string(info.param.tapCode) + (info.param.app == 0 ? "Number" : "Name");
    });

// What becomes of a number on its way into a URL.
struct Cleaned {
    int tapCode;
    char const* url;
};

class CleanedNumber : public ActionOrder, public testing::WithParamInterface<Cleaned> {
protected:
    static Effects tappedFor(std::string const& number)
    {
        Json contact = annasEntry();
        contact["contactPhoneNumber"] = number;
        bootPhone(GetParam().tapCode, false, contact);
        return only(tapped(), { "openURL" });
    }
};

TEST_P(CleanedNumber, KeepsItsSigns)
{
    EXPECT_EQ(tappedFor(" +1  (555) 12.3-4-5 "), Effects { std::string("openURL ") + GetParam().url });
}

// Only U+0020 is a space; what is left is no URL.
TEST_P(CleanedNumber, KeepsASpaceThatDoesNotBreak)
{
    EXPECT_EQ(tappedFor("+1\u00A0555"), Effects { "openURL null" });
}

TEST_P(CleanedNumber, MayBeNoUrl) { EXPECT_EQ(tappedFor("٠١٢"), Effects { "openURL null" }); }

INSTANTIATE_TEST_SUITE_P(Every, CleanedNumber,
    testing::Values(Cleaned { 0, "tel:+1(555)12.3-4-5" }, Cleaned { 6, "facetime:+1(555)12.3-4-5" },
        Cleaned { 1, "whatsapp://send?phone=+1(555)12.3-4-5" }, Cleaned { 2, "tg://msg?&to=+1(555)12.345" }),
    [](auto const& info) { return "Code" + std::to_string(info.param.tapCode); });

// Whether a call is asked about is decided by the strip that was made last, for all of them.
TEST_F(ActionOrder, FollowsTheStripThatWasMadeLast)
{
    bootPhone(0, true);
    ASSERT_TRUE(phone().changeSettings({ { "askBeforeCall", false } }, {}));
    phone().adjunctController().send<"initFirstPreferences">();
    EXPECT_EQ(only(tapped(), { "alert" }).size(), 1u);
    touch(alertRow("No"));
    wait();

    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
    wait();
    ASSERT_TRUE(phone().overlay());
    forget();

    EXPECT_EQ(tapped(),
        kTapped + Effects({ "openURL tel:+44207946-0958", "strip makeBannerGone", "completion yes" }));
}

}
