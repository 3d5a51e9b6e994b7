// A system that lacks something: a class, a method, an instance variable, or an object where there should be one.
// What does not depend on it still works.
#include "tests/scenarios/actions.hpp"
#include "tests/scenarios/everyday_use.hpp"

#include "phone/springboard/springboard_state.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

extern "C" {
Method* class_copyMethodList(Class cls, unsigned* count);
SEL method_getName(Method method);
char const* method_getTypeEncoding(Method method);
}

namespace phone {

namespace {

struct DamagedEntry {
    char const* title;
    int tapCode;
    char const* effect;   // that tells the action has run
};
constexpr DamagedEntry kDamagedEntries[] {
    { "Call Contact", 0, "openURL tel:+44207946-0958" },
    { "Send WhatsApp Message", 1, "openURL whatsapp://send?phone=+44207946-0958" },
    { "Send Telegram Message", 2, "openURL tg://msg?&to=+442079460958" },
    { "Call via WhatsApp", 3, "siri call +44 20 7946-0958 in whatsapp" },
    { "Call via Telegram", 4, "siri call +44 20 7946-0958 in telegram" },
    { "New SMS Message", 5, "present MFMessageComposeViewControllerCVL" },
    { "Facetime Call", 6, "openURL facetime:+44207946-0958" },
    { "Email (anna@example.com)", 7, "present MFMailComposeViewControllerCVL" },
};

// What is missing, and the actions (by tap code) that can't work without it.
struct Damage {
    char const* missing;
    std::set<int> broken;
    bool answersNil { false };   // the method is there, and answers nil
    char const* version { "15.4" };
};

void PrintTo(Damage const& damage, std::ostream* stream) { *stream << damage.missing; }

std::vector<Damage> damages()
{
    return {
        { "SpringBoard", {} },
        { "SpringBoard pluginUserAgent", {} },
        { "SpringBoard pluginUserAgent", {}, true },
        { "SBPluginUserAgent deviceIsPasscodeLocked", {} },
        { "SBLockScreenManager", {} },
        { "SBLockScreenManager sharedInstance", {} },
        { "SBLockScreenManager sharedInstance", {}, true },
        { "SBLockScreenManager lockScreenViewControllerRequestsUnlock", {} },
        { "SBLockScreenManager lockScreenViewControllerWillDismiss", {} },
        { "SBLockScreenManager _finishUIUnlockFromSource:withOptions:", {} },
        { "SBCoverSheetPresentationManager", {} },
        { "SBCoverSheetPresentationManager sharedInstance", {} },
        { "SBCoverSheetPresentationManager sharedInstance", {}, true },
        { "SBCoverSheetPresentationManager coverSheetViewController", {} },
        { "SBCoverSheetPresentationManager coverSheetViewController", {}, true },
        { "CSCoverSheetViewController idleTimerController", {} },
        { "CSCoverSheetViewController idleTimerController", {}, true },
        { "CSIdleTimerController._dashBoardIdleTimerProvider", {} },
        { "NSObject safeValueForKey:", {} },
        { "SBDashBoardIdleTimerProvider addDisabledIdleTimerAssertionReason:", {} },
        { "SBDashBoardIdleTimerProvider removeDisabledIdleTimerAssertionReason:", {} },
        { "CSNotificationAdjunctListViewController _updatePresentingContent", {} },
        { "CSNotificationAdjunctListViewController _insertItem:animated:", {} },
        { "CSPasscodeViewController", {} },
        { "SpringBoard _frontMostAppOrientation", {} },
        { "SBAssistantController", { 3, 4 } },
        { "SBAssistantController sharedInstance", { 3, 4 } },
        { "SBAssistantController sharedInstance", { 3, 4 }, true },
        { "SBAssistantController._mainScreenSiriPresentation", { 3, 4 } },
        { "SBSiriPresentation presentationRequestedWithPresentationOptions:requestOptions:", { 3, 4 } },
        { "SiriPresentationOptions", {} },
        { "SiriPresentationOptions setWakeScreen:", {} },
        { "SiriPresentationOptions setHideOtherWindowsDuringAppearance:", {} },
        { "SASRequestOptions", { 3, 4 } },
        { "SASRequestOptions initWithRequestSource:uiPresentationIdentifier:", { 3, 4 } },
        { "SASRequestOptions timestamp", {} },
        { "SASRequestOptions setButtonDownTimestamp:", {} },
        { "SASRequestOptions setText:", { 3, 4 } },
        { "SASRequestOptions setContextAppInfosForSiriViewController:", {} },
        { "AFApplicationInfo", {} },
        { "AFApplicationInfo setPid:", {} },
        { "AFApplicationInfo setIdentifier:", {} },
        { "MFMessageComposeViewController", { 5 } },
        { "MFMessageComposeViewController canSendText", { 5 } },
        { "MFMessageComposeViewController setMessageComposeDelegate:", {} },
        { "MFMessageComposeViewController setRecipients:", {} },
        { "MFMailComposeViewController", { 7 } },
        { "MFMailComposeViewController canSendMail", { 7 } },
        { "MFMailComposeViewController setMailComposeDelegate:", {} },
        { "MFMailComposeViewController setToRecipients:", {} },
        { "CNContactPickerViewController", {} },
        { "CNContactPickerViewController setDelegate:", {} },
        { "LAActivator", {} },
        { "LAActivator sharedInstance", {} },
        { "LAActivator sharedInstance", {}, true },
        { "LAActivator registerListener:forName:", {} },
        { "activator", {} },
        { "UIAlertAction setImage:", {} },
        { "UIImage _applicationIconImageForBundleIdentifier:format:scale:", {} },
        { "UIImage _applicationIconImageForBundleIdentifier:format:scale:", {}, true },
        { "UIWindow _setSecure:", {} },
        { "UIWindow setAutorotates:", {} },
        { "UIViewController presentViewController:animated:completion:", { 0, 1, 2, 3, 4, 5, 6, 7 } },
        { "whatsapp", {} },   // asked for all the same
        // No system before 13 has calls by Siri.
        { "SBCoverSheetPresentationManager dashBoardViewController", { 3, 4 }, false, "12.4" },
        { "SBCoverSheetPresentationManager dashBoardViewController", { 3, 4 }, true, "12.4" },
        { "SBDashBoardViewController._idleTimerProvider", { 3, 4 }, false, "12.4" },
        { "SBDashBoardPasscodeViewController", { 3, 4 }, false, "12.4" },
    };
}

std::string nameOfDamage(testing::TestParamInfo<Damage> const& info)
{
    std::string name;
    for (char const letter : std::string(info.param.missing))
        name += std::isalnum(static_cast<unsigned char>(letter)) ? letter : '_';
    return name + (info.param.answersNil ? "_nil" : "");
}

}

class Damaged : public Story, public testing::WithParamInterface<Damage> {
protected:
    // Runs the entry of a menu that is opened for it, and puts away what came.
    static Effects run(DamagedEntry const& entry)
    {
        if (!phone().isLocked()) {
            phone().lock();
            wait();
        }
        hold(contactButton());
        wait();
        forget();
        if (UIView const row = alertRow(entry.title))
            touch(row);
        wait();
        Effects const came = effects();
        clear();
        return came;
    }
    static void clear()
    {
        for (char const* const title : { "End", "Siri", "Cancel" })
            if (UIView const shown = button(title))
                touch(shown);
        wait();
        // A composer whose delegate nobody told: it goes with the next step.
        if (auto const composer = presented("UIViewController"))
            composer.dismiss(false);
        wait(0.1);
    }
};

TEST_P(Damaged, StillDoesEverythingElse)
{
    Damage const& damage = GetParam();
    auto options = Story::options(damage.version, { { "singleTapAction", 9 }, { "askBeforeCall", false } });
    options.absent = { damage.missing };
    if (damage.answersNil)
        options.present = { damage.missing };
    boot(options);

    for (DamagedEntry const& entry : kDamagedEntries) {
        Effects const came = run(entry);
        bool const hasRun = std::ranges::find(came, entry.effect) != came.end();
        EXPECT_EQ(hasRun, !damage.broken.contains(entry.tapCode))
            << entry.title << " without " << damage.missing << ": " << testing::PrintToString(came);
    }
}

INSTANTIATE_TEST_SUITE_P(Every, Damaged, testing::ValuesIn(damages()), nameOfDamage);

// Whatever class the plug-in looks up by name, however fundamental: nothing crashes.
class MissingClass : public EverydayUse {
protected:
    static void expectSurvival(std::string const& version)
    {
        std::string lookups;
        ASSERT_EQ(inChild(
                      [&](std::FILE* stream) {
                          boot(usual(version));
                          useEverything();
                          std::set<std::string> names;
                          for (Json const& event : phone().trace().events())
                              if (event["kind"] == "lookup" && event["found"] == true)
                                  names.insert(event["class"]);
                          for (std::string const& name : names)
                              std::fprintf(stream, "%s\n", name.c_str());
                      },
                      &lookups),
            "");
        std::size_t count = 0;
        for (std::size_t at = 0; at < lookups.size(); ++count) {
            std::size_t const end = lookups.find('\n', at);
            std::string const name = lookups.substr(at, end - at);
            at = end + 1;
            auto damaged = usual(version);
            damaged.absent = { name };
            EXPECT_EQ(inChild([&](std::FILE*) {
                boot(damaged);
                useEverything();
            }),
                "")
                << "without " << name;
        }
        EXPECT_GT(count, 50u);
    }
};

TEST_F(MissingClass, CrashesNothingOnACoverSheetSystem) { expectSurvival("15.4"); }
TEST_F(MissingClass, CrashesNothingOnADashBoardSystem) { expectSurvival("12.4"); }

// Every message of the strip's own that takes objects, with none.
TEST_F(MissingClass, LeavesTheStripToCopeWithNil)
{
    boot(usual("15.4"));
    unsigned count = 0;
    unsigned sent = 0;
    Method* const methods = class_copyMethodList(objc_getClass("CVLView"), &count);
    for (unsigned i = 0; i < count; ++i) {
        std::string const encoding = method_getTypeEncoding(methods[i]);
        if (std::strcmp(sel_getName(method_getName(methods[i])), "dealloc") == 0)
            continue;   // the strip shall live on
        // Structures and numbers with a fraction travel by other ways than objects do.
        if (encoding.find_first_of("{df") != encoding.npos)
            continue;
        id const strip = phone().strip().object;
        SEL const selector = method_getName(methods[i]);
        IMP const code = objc::boundary::message_implementation(strip, selector);
        objc::handle const none;
        objc::call_implementation<void>(code, strip, selector, none, none, none);
        wait(0.1);
        ++sent;
    }
    std::free(methods);
    EXPECT_GT(sent, 30u);
}

}
